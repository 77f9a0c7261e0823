#include "web/WebCall.h"

#include "platform/BackgroundQueue.h"
#include "platform/MainQueue.h"
#include "platform/Platform.h"
#include "platform/ScopeExit.h"
#include "platform/UrlFetch.h"

#include <utility>

namespace vorrano::web {

WebCall::WebCall()
    : m_backgroundQueue(platform::Platform::current().backgroundQueue)
    , m_mainQueue(platform::Platform::current().mainQueue)
    , m_urlFetch(platform::Platform::current().urlFetch)
{}

void WebCall::fetch(std::string address, Handler handler) const
{
    m_backgroundQueue.async([address = std::move(address), handler = std::move(handler), &mainQueue = m_mainQueue,
                             &backgroundQueue = m_backgroundQueue, &urlFetch = m_urlFetch]() mutable {
        auto reply = Reply::parsed(urlFetch.contentsOfUrl(address));
        mainQueue.async([handler = std::move(handler), reply = std::move(reply), &backgroundQueue]() mutable {
            // A long reply takes its time to be freed as well: not here.
            const platform::ScopeExit freed([&] { backgroundQueue.async([reply = std::exchange(reply, {})] {}); });
            handler(reply);
        });
    });
}

} // namespace vorrano::web
