#pragma once

#include "platform/Controls.h"
#include "platform/System.h"

#include <functional>
#include <memory>
#include <utility>

namespace vorrano::platform {

// What a control does for an object: calls the method, on the main thread, for as long as the object lives. `method` is
// a pointer to a member function, or a callable that takes the object, and takes the sender last.
template <class Object, class Method>
[[nodiscard]] Action actionOf(std::weak_ptr<Object> object, Method method)
{
    return [weak = std::move(object), method = std::move(method)](Control& sender) {
        assertMainThread();
        if (const auto self = weak.lock()) {
            std::invoke(method, *self, sender);
        }
    };
}

} // namespace vorrano::platform
