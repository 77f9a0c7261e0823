#pragma once

#include "platform/Mutex.h"
#include "platform/UrlFetch.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <optional>
#include <set>
#include <string>

namespace vorrano::curl_platform {

// Fetches by libcurl. Certificates are verified against the system's trust store. Redirections are followed, 20 at
// most, to http and https only and never from https down to http; one that may not be followed gives none. Proxy
// settings of the environment are not looked at: the way to the service is the network's own. Nothing is logged.
//
// Threads: contentsOfUrl() on background threads, which block SIGPIPE; abort() on any.
// Lifetime: outlives every call of contentsOfUrl().
class CurlFetch final : public platform::UrlFetch {
public:
    struct Limits {
        std::chrono::milliseconds withoutProgress = std::chrono::seconds(60);
        std::size_t body = std::size_t{64} * 1024 * 1024;
    };

    CurlFetch();

    // With limits of its own, and the authorities in a PEM file in place of the system's.
    CurlFetch(Limits limits, std::string authorities);

    [[nodiscard]] std::optional<std::string> contentsOfUrl(const std::string& address) override;

    void abort() override;

private:
    class Transfer;

    const Limits m_limits;
    const std::string m_authorities;
    std::atomic<bool> m_aborted = false;
    platform::Mutex m_transfersMutex;
    std::set<Transfer*> m_transfers VORRANO_GUARDED_BY(m_transfersMutex);
};

} // namespace vorrano::curl_platform
