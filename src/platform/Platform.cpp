#include "platform/Platform.h"

#include "platform/MainThreadDeleter.h"

#include <cassert>

namespace vorrano::platform {

namespace {
Platform* s_current = nullptr;
} // namespace

Platform::Platform(const Interfaces& interfaces)
    : Interfaces(interfaces)
    , m_system({interfaces.mainQueue, interfaces.backgroundQueue, interfaces.notificationCentre, interfaces.terminal,
                interfaces.deviceRegistry, interfaces.powerEvents, interfaces.systemLog})
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
    assertMainThread();
    return *s_current;
}

} // namespace vorrano::platform
