#pragma once

#include <optional>
#include <string>

namespace vorrano::platform {

// Fetches what an address holds, whole, with a plain GET.
//
// Threads: contentsOfUrl() on background threads, several at the same time; it blocks until the end.
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

    // The program ends: every fetch that is under way, and every later one, ends at once with none. Does not wait for
    // them. Any thread.
    virtual void abort() = 0;
};

} // namespace vorrano::platform
