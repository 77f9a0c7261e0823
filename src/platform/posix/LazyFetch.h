#pragma once

#include "platform/Mutex.h"
#include "platform/UrlFetch.h"

#include <memory>

namespace vorrano::platform {
class SystemLog;
}

namespace vorrano::posix_platform {

// The module with libcurl in it, and the function in it that makes a fetch.
inline constexpr const char* kFetchModule = "vorrano-fetch.so";
inline constexpr const char* kFetchMaker = "vorranoMakeFetch";

// Fetches by a module that is loaded with the first fetch: libcurl and the thirty libraries behind it take longer to
// load than everything else between the program's start and its first window.
//
// Threads: as UrlFetch says. Without the module every fetch gives none, and a line in the log says
// so.
class LazyFetch final : public platform::UrlFetch {
public:
    explicit LazyFetch(platform::SystemLog& log, const char* module = kFetchModule);

    [[nodiscard]] std::optional<std::string> contentsOfUrl(const std::string& address) override;
    void abort() override;

private:
    [[nodiscard]] platform::UrlFetch* loaded();

    platform::SystemLog& m_log;
    const char* const m_module;
    // Held while the module is loaded, never during a fetch.
    platform::Mutex m_mutex;
    std::unique_ptr<platform::UrlFetch> m_fetch VORRANO_GUARDED_BY(m_mutex);
    bool m_aborted VORRANO_GUARDED_BY(m_mutex) = false;
};

} // namespace vorrano::posix_platform
