#pragma once

#include "platform/Mutex.h"
#include "platform/Subscription.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace vorrano::serial {

// Observers of one thing, told in the order in which they began.
//
// Threads: any; observers are called on the teller's, without a lock. One that ends while another thread tells may
// still be under way.
// Lifetime: a subscription may outlive the list, and may be dropped inside the call that it stands for.
template <class Change>
class ObserverList {
public:
    using Observer = std::function<void(const Change&)>;

    [[nodiscard]] platform::Subscription add(Observer observer)
    {
        const auto id = m_entries->add(std::move(observer));
        return platform::Subscription([weak = std::weak_ptr(m_entries), id] {
            if (const auto entries = weak.lock()) {
                entries->remove(id);
            }
        });
    }

    void tell(const Change& change) const
    {
        const auto entries = m_entries;
        for (const auto& [id, observer] : entries->copy()) {
            if (entries->has(id)) {
                (*observer)(change);
            }
        }
    }

private:
    struct Entry {
        std::uint64_t id;
        std::shared_ptr<const Observer> observer;
    };
    struct Entries {
        std::uint64_t add(Observer observer)
        {
            const platform::MutexLock lock(mutex);
            list.push_back({++lastId, std::make_shared<const Observer>(std::move(observer))});
            return lastId;
        }
        void remove(std::uint64_t id)
        {
            std::shared_ptr<const Observer> removed;
            const platform::MutexLock lock(mutex);
            const auto found = find(id);
            if (found != list.end()) {
                removed = std::move(found->observer);
                list.erase(found);
            }
        }
        [[nodiscard]] std::vector<Entry> copy()
        {
            const platform::MutexLock lock(mutex);
            return list;
        }
        [[nodiscard]] bool has(std::uint64_t id)
        {
            const platform::MutexLock lock(mutex);
            return find(id) != list.end();
        }
        typename std::vector<Entry>::iterator find(std::uint64_t id) VORRANO_REQUIRES(mutex)
        {
            return std::find_if(list.begin(), list.end(), [id](const Entry& entry) { return entry.id == id; });
        }

        platform::Mutex mutex;
        std::vector<Entry> list VORRANO_GUARDED_BY(mutex);
        std::uint64_t lastId VORRANO_GUARDED_BY(mutex) = 0;
    };

    std::shared_ptr<Entries> m_entries = std::make_shared<Entries>();
};

} // namespace vorrano::serial
