#include "simulator/service/SimulatedService.h"

#include "simulator/service/HttpHead.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>

namespace vorrano::simulator {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view kNoPage = "<html><head><title>404</title></head><body>There is no such page.</body></html>";

std::string unescaped(std::string_view text)
{
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned char byte = 0;
        const auto* digits = text.data() + i + 1;
        if (text[i] == '%' && i + 2 < text.size() && std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
            plain.push_back(static_cast<char>(byte));
            i += 2;
        } else {
            plain.push_back(text[i]);
        }
    }
    return plain;
}

std::vector<std::string> segmentsOf(std::string_view path)
{
    std::vector<std::string> segments;
    for (;;) {
        const auto slash = path.find('/');
        segments.push_back(unescaped(path.substr(0, slash)));
        if (slash == std::string_view::npos) {
            return segments;
        }
        path.remove_prefix(slash + 1);
    }
}

Response json(const Json& document)
{
    return {200, document.dump(-1, ' ', false, Json::error_handler_t::replace), "application/json"};
}

Response idReply(const std::string& id) { return json({{"data", Json::array({{{"Id", id}}})}}); }

Response noPage() { return {404, std::string(kNoPage), "text/html"}; }

// The record that an address carries: what the account is called, an empty segment, then its values, each either a
// text or "nil".
std::optional<std::map<std::string, std::string>> valuesOf(const std::vector<std::string>& segments)
{
    const auto& keys = SimulatedService::keysInAddressOrder();
    if (segments.size() != keys.size() + 2 || !segments[1].empty()) {
        return std::nullopt;
    }
    std::map<std::string, std::string> values;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        values[keys[i]] = segments[i + 2] == "nil" ? "" : segments[i + 2];
    }
    return values;
}

} // namespace

const std::vector<std::string>& SimulatedService::keysInAddressOrder()
{
    static const std::vector<std::string> keys{"Password", "Email", "Name",    "Address1", "Address2",
                                               "City",     "State", "Country", "ZipCode",  "GuestPassword"};
    return keys;
}

Response SimulatedService::answer(std::string_view target)
{
    target = target.substr(0, target.find('?'));
    if (target.substr(0, kServiceRoot.size()) != kServiceRoot) {
        return noPage();
    }
    target.remove_prefix(kServiceRoot.size());
    auto segments = segmentsOf(target);
    const auto method = segments.front();
    segments.erase(segments.begin());
    if (method == "validateLogin" && segments.size() == 2) {
        return validateLogin(segments);
    }
    if (method == "getAccounts" && !segments.empty()) {
        return getAccounts(segments);
    }
    if (method == "insertAccount") {
        return insertAccount(segments);
    }
    if (method == "insertAccountVorranos") {
        return insertAccountVorranos(segments);
    }
    if (method == "GetLatestFirmware" && segments.size() == 1) {
        // The version is the bare number that begins at character 27.
        return {200, "{\"GetLatestFirmwareResult\":" + m_latestFirmware + "}", "application/json"};
    }
    return noPage();
}

Response SimulatedService::validateLogin(const Segments& segments) const
{
    const auto account = std::find_if(m_accounts.begin(), m_accounts.end(), [&](const Account& candidate) {
        const auto& values = candidate.values;
        return (values.at("AccountLogin") == segments[0] || values.at("Email") == segments[0]) &&
               values.at("Password") == segments[1];
    });
    return idReply(account == m_accounts.end() ? "0" : account->id);
}

Response SimulatedService::getAccounts(const Segments& segments)
{
    auto* account = accountOfId(segments[0]);
    if (segments.size() == 1) {
        auto records = Json::array();
        if (account != nullptr) {
            records.push_back(account->values);
        }
        return json({{"data", records}});
    }
    const auto values = valuesOf(segments);
    if (!values) {
        return noPage();
    }
    if (account == nullptr) {
        return idReply("0");
    }
    for (const auto& [key, value] : *values) {
        account->values[key] = value;
    }
    return idReply(account->id);
}

Response SimulatedService::insertAccount(const Segments& segments)
{
    auto values = valuesOf(segments);
    if (!values) {
        return noPage();
    }
    const auto& login = segments[0];
    if (std::any_of(m_accounts.begin(), m_accounts.end(),
                    [&](const Account& account) { return account.values.at("AccountLogin") == login; })) {
        return idReply("-1");
    }
    (*values)["AccountLogin"] = login;
    return idReply(addAccount(*std::move(values)));
}

Response SimulatedService::insertAccountVorranos(const Segments& segments)
{
    if (segments.size() < 3) {
        return noPage();
    }
    m_registrations.push_back({segments[0], segments[1], segments[2]});
    return idReply(std::to_string(m_registrations.size()));
}

std::string SimulatedService::addAccount(std::map<std::string, std::string> values)
{
    values.try_emplace("AccountLogin");
    for (const auto& key : keysInAddressOrder()) {
        values.try_emplace(key);
    }
    m_accounts.push_back({std::to_string(++m_lastId), std::move(values)});
    return m_accounts.back().id;
}

Account* SimulatedService::accountOfId(std::string_view id)
{
    const auto account =
        std::find_if(m_accounts.begin(), m_accounts.end(), [id](const Account& a) { return a.id == id; });
    return account == m_accounts.end() ? nullptr : &*account;
}

} // namespace vorrano::simulator
