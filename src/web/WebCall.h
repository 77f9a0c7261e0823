#pragma once

#include "web/Reply.h"

#include <functional>
#include <string>

namespace vorrano::platform {
class BackgroundQueue;
class MainQueue;
class UrlFetch;
} // namespace vorrano::platform

namespace vorrano::web {

// Exchanges with the web service. Each fetches an address whole and parses the reply on the background queue, and hands
// it to its handler on the main queue; several may be under way, their handlers run in the order the replies arrive.
//
// There is no time-out, retry or status check: whatever goes wrong is a null reply.
// Threads: the main thread. The handler runs there too, but may be released on any thread: what it holds (the
// controller, so that a reply finds it alive) needs a MainThreadDeleter.
class WebCall {
public:
    using Handler = std::function<void(const Reply&)>;

    // Keeps the interfaces of Platform::current().
    WebCall();

    void fetch(std::string address, Handler handler) const;

private:
    platform::BackgroundQueue& m_backgroundQueue;
    platform::MainQueue& m_mainQueue;
    platform::UrlFetch& m_urlFetch;
};

} // namespace vorrano::web
