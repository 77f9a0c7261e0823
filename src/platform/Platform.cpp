#include "platform/Platform.h"

#include "platform/MainThreadDeleter.h"

#include <cassert>

namespace vorrano::platform {

namespace {
Platform* s_platform = nullptr;
} // namespace

Platform::Platform(const Interfaces& interfaces)
    : Interfaces(interfaces)
    , m_system({interfaces.mainQueue, interfaces.backgroundQueue, interfaces.notificationCentre, interfaces.terminal,
                interfaces.deviceRegistry, interfaces.powerEvents, interfaces.systemLog})
{
    assert(s_platform == nullptr);
    s_platform = this;
}

Platform::~Platform()
{
    destroyHandedOver();
    s_platform = nullptr;
}

Platform& Platform::current()
{
    assert(s_platform != nullptr);
    assertMainThread();
    return *s_platform;
}

} // namespace vorrano::platform
