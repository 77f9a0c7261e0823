#pragma once

#include "platform/MainQueue.h"

#include <memory>

namespace vorrano::platform {

// The deleter of objects that may be destroyed on the main thread only, but whose last reference may fall elsewhere (a
// controller that a call under way holds).
//
//     const auto controller = destroyedOnMainThread(new Controller(...), mainQueue);
//
// On the main thread it destroys at once; on any other it hands the object over to the main queue. What the queue does
// not take any more is destroyed with the Platform, on the main thread too: nothing leaks.
// Lifetime: the queue outlives the object.
namespace detail {
void destroyOnMainThread(MainQueue& queue, void* object, void (*destroy)(void*));
}

template <class T>
class MainThreadDeleter {
public:
    explicit MainThreadDeleter(MainQueue& queue)
        : m_queue(&queue)
    {}

    void operator()(T* object) const
    {
        detail::destroyOnMainThread(*m_queue, object, [](void* given) { delete static_cast<T*>(given); });
    }

private:
    MainQueue* m_queue;
};

template <class T>
[[nodiscard]] std::shared_ptr<T> destroyedOnMainThread(T* object, MainQueue& queue)
{
    return {object, MainThreadDeleter<T>(queue)};
}

// Main thread: destroys what has been handed over and not been destroyed yet. The Platform does it at its end.
void destroyHandedOver();

} // namespace vorrano::platform
