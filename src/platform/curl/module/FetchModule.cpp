#include "platform/curl/CurlFetch.h"

// What the program looks up by this name when it loads the module.
extern "C" __attribute__((visibility("default"))) vorrano::platform::UrlFetch* vorranoMakeFetch()
{
    return new vorrano::curl_platform::CurlFetch();
}
