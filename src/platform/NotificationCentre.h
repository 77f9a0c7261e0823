#pragma once

#include "platform/Subscription.h"

#include <any>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vorrano::platform {

// Posted on the default centre, on the main thread, while the main queue still runs, before the program ends.
inline constexpr std::string_view kApplicationWillTerminateNotification = "ApplicationWillTerminateNotification";

struct Notification {
    std::string name;
    const void* sender = nullptr;
    std::map<std::string, std::any> userInfo;
};

// Named notifications between objects that do not know each other.
//
// Threads: the main thread only. post() calls the observers of the name synchronously, in the order in which they
// began to observe; one that begins during a post hears the next one, one that ends during a post hears no more.
// Lifetime: an observer is held weakly; a dead one is skipped and dropped. While a handler runs its observer is held.
class NotificationCentre {
public:
    using Handler = std::function<void(const Notification&)>;

    // Ends with the subscription, or with the observer. The subscription may outlive the centre.
    [[nodiscard]] Subscription observe(std::string_view name, std::weak_ptr<void> observer, Handler handler);

    void post(const Notification& notification);

private:
    struct Entry {
        std::uint64_t id;
        std::string name;
        std::weak_ptr<void> observer;
        std::shared_ptr<Handler> handler;
    };
    std::shared_ptr<std::vector<Entry>> m_entries = std::make_shared<std::vector<Entry>>();
    std::uint64_t m_lastId = 0;
};

} // namespace vorrano::platform
