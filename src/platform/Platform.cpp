#include "platform/Platform.h"

#include "platform/MainThreadDeleter.h"

#include <cassert>
#include <utility>

namespace vorrano::platform {

namespace {
Platform* s_current = nullptr;
}

Platform::Platform(Ports ports)
    : Ports(std::move(ports))
{
    assert(s_current == nullptr);
    s_current = this;
}

Platform::~Platform()
{
    destroyHandedOver();
    s_current = nullptr;
}

Platform& Platform::current()
{
    assert(s_current != nullptr);
    return *s_current;
}

} // namespace vorrano::platform
