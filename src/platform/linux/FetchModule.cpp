#include "platform/linux/CurlFetch.h"

extern "C" __attribute__((visibility("default"))) vorrano::linux_platform::AbortableFetch* vorranoMakeFetch()
{
    return new vorrano::linux_platform::CurlFetch();
}
