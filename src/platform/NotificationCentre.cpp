#include "platform/NotificationCentre.h"

#include <algorithm>

namespace vorrano::platform {

Subscription NotificationCentre::observe(std::string_view name, std::weak_ptr<void> observer, Handler handler)
{
    const auto id = ++m_lastId;
    m_entries->push_back({id, std::string(name), std::move(observer), std::make_shared<Handler>(std::move(handler))});
    return Subscription([entries = std::weak_ptr(m_entries), id] {
        if (const auto alive = entries.lock()) {
            std::erase_if(*alive, [id](const Entry& entry) { return entry.id == id; });
        }
    });
}

void NotificationCentre::post(const Notification& notification)
{
    std::erase_if(*m_entries, [](const Entry& entry) { return entry.observer.expired(); });
    const auto heard = *m_entries;
    for (const auto& entry : heard) {
        const auto stands = [id = entry.id](const Entry& other) { return other.id == id; };
        if (entry.name != notification.name || std::none_of(m_entries->begin(), m_entries->end(), stands)) {
            continue;
        }
        if (const auto observer = entry.observer.lock()) {
            (*entry.handler)(notification);
        }
    }
}

} // namespace vorrano::platform
