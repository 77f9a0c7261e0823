#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorrano::simulator {

struct Account {
    std::string id;
    // The values of the account record by their keys (AccountLogin, Password, ...).
    std::map<std::string, std::string> values;
};

struct Registration {
    std::string accountId;
    std::string macAddress;
    std::string name;
};

struct Response {
    int status = 200;
    std::string body;
    std::string contentType = "application/json";
};

// The vendor's web service, with its accounts in memory: a request's target in, a response out.
// One thread.
class SimulatedService {
public:
    // The keys of an account record, in the order in which an address carries them after the account's name or id.
    [[nodiscard]] static const std::vector<std::string>& keysInAddressOrder();

    // `target` as it stands in the request line, escapes and doubled slashes included.
    [[nodiscard]] Response answer(std::string_view target);

    // Adds an account and gives its id.
    std::string addAccount(std::map<std::string, std::string> values);
    [[nodiscard]] const std::vector<Account>& accounts() const { return m_accounts; }
    [[nodiscard]] const std::vector<Registration>& registrations() const { return m_registrations; }

    // The version that GetLatestFirmware names.
    void setLatestFirmware(std::string version) { m_latestFirmware = std::move(version); }
    [[nodiscard]] const std::string& latestFirmware() const { return m_latestFirmware; }

private:
    using Segments = std::vector<std::string>;
    [[nodiscard]] Response validateLogin(const Segments& segments) const;
    [[nodiscard]] Response getAccounts(const Segments& segments);
    [[nodiscard]] Response insertAccount(const Segments& segments);
    [[nodiscard]] Response insertAccountVorranos(const Segments& segments);
    [[nodiscard]] Account* accountOfId(std::string_view id);

    std::vector<Account> m_accounts;
    std::vector<Registration> m_registrations;
    std::string m_latestFirmware = "9.60";
    int m_lastId = 1233;
};

} // namespace vorrano::simulator
