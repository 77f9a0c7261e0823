#include "platform/Platform.h"

#include "platform/MainThreadDeleter.h"

#include <cassert>
#include <thread>

namespace vorrano::platform {

namespace {
Platform* s_current = nullptr;
std::thread::id s_mainThread;
} // namespace

Platform::Platform(const Interfaces& interfaces)
    : Interfaces(interfaces)
{
    assert(s_current == nullptr);
    s_current = this;
    s_mainThread = std::this_thread::get_id();
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

void assertMainThread() { assert(s_current == nullptr || std::this_thread::get_id() == s_mainThread); }

} // namespace vorrano::platform
