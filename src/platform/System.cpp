#include "platform/System.h"

#include "platform/MainThreadDeleter.h"

#include <cassert>
#include <thread>

namespace vorrano::platform {

namespace {
System* s_current = nullptr;
std::thread::id s_mainThread;
} // namespace

System::System(const SystemInterfaces& interfaces)
    : SystemInterfaces(interfaces)
{
    assert(s_current == nullptr);
    s_current = this;
    s_mainThread = std::this_thread::get_id();
}

System::~System()
{
    destroyHandedOver();
    s_current = nullptr;
}

System& System::current()
{
    assert(s_current != nullptr);
    assertMainThread();
    return *s_current;
}

void assertMainThread() { assert(s_current == nullptr || std::this_thread::get_id() == s_mainThread); }

} // namespace vorrano::platform
