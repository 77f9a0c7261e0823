#include "platform/MainThreadDeleter.h"

#include <mutex>
#include <utility>
#include <vector>

namespace vorrano::platform {

namespace {

struct HandedOver {
    void* object;
    void (*destroy)(void*);
};

std::mutex s_mutex;
std::vector<HandedOver> s_handedOver;

} // namespace

void detail::destroyOnMainThread(MainQueue& queue, void* object, void (*destroy)(void*))
{
    if (queue.isMainThread()) {
        destroy(object);
        return;
    }
    {
        const std::lock_guard lock(s_mutex);
        s_handedOver.push_back({object, destroy});
    }
    queue.async(destroyHandedOver);
}

void destroyHandedOver()
{
    std::vector<HandedOver> objects;
    {
        const std::lock_guard lock(s_mutex);
        objects.swap(s_handedOver);
    }
    for (const auto& [object, destroy] : objects) {
        destroy(object);
    }
}

} // namespace vorrano::platform
