#pragma once

#include <optional>
#include <string>

namespace vorrano::platform {

// Fetches what an address holds, whole, with a plain GET.
//
// Threads: background threads; blocks until the end. Safe at the same time from several.
class UrlFetch {
public:
    UrlFetch() = default;
    UrlFetch(const UrlFetch&) = delete;
    UrlFetch& operator=(const UrlFetch&) = delete;
    virtual ~UrlFetch() = default;

    // The body, whatever the status; none when the text is no http or https address, on any failure of transport, when
    // the body is larger than 64 MiB, after 60 s without progress, or when the program is ending. The path goes out
    // exactly as it stands. Nothing of the address is logged.
    [[nodiscard]] virtual std::optional<std::string> contentsOfUrl(const std::string& address) = 0;
};

} // namespace vorrano::platform
