#include "platform/MainThreadDeleter.h"

#include "platform/Mutex.h"

#include <utility>
#include <vector>

namespace vorrano::platform {

namespace {

struct HandedOver {
    void* object;
    void (*destroy)(void*);
};

Mutex s_mutex;
std::vector<HandedOver> s_handedOver VORRANO_GUARDED_BY(s_mutex);

} // namespace

void detail::destroyOnMainThread(MainQueue& queue, void* object, void (*destroy)(void*))
{
    if (queue.isMainThread()) {
        destroy(object);
        return;
    }
    {
        const MutexLock lock(s_mutex);
        s_handedOver.push_back({object, destroy});
    }
    queue.async(destroyHandedOver);
}

void destroyHandedOver()
{
    std::vector<HandedOver> objects;
    {
        const MutexLock lock(s_mutex);
        objects.swap(s_handedOver);
    }
    for (const auto& [object, destroy] : objects) {
        destroy(object);
    }
}

} // namespace vorrano::platform
