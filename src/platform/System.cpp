#include "platform/System.h"

#include "platform/MainThreadDeleter.h"

#include <cassert>
#include <thread>

namespace vorrano::platform {

namespace {
System* s_system = nullptr;
std::thread::id s_mainThread;
} // namespace

System::System(const SystemInterfaces& interfaces)
    : SystemInterfaces(interfaces)
{
    assert(s_system == nullptr);
    s_system = this;
    s_mainThread = std::this_thread::get_id();
}

System::~System()
{
    destroyHandedOver();
    s_system = nullptr;
}

System& System::current()
{
    assert(s_system != nullptr);
    assertMainThread();
    return *s_system;
}

void assertMainThread() { assert(s_system == nullptr || std::this_thread::get_id() == s_mainThread); }

} // namespace vorrano::platform
