#pragma once

#include "platform/UrlFetch.h"

namespace vorrano::linux_platform {

// Fetches that the program's end can cut short.
class AbortableFetch : public platform::UrlFetch {
public:
    // Any thread. Ends the fetches that are under way, and every later one at once, with none. Does not wait for them.
    virtual void abort() = 0;
};

// What the module with libcurl in it gives out.
inline constexpr const char* kFetchModule = "vorrano-fetch.so";
inline constexpr const char* kFetchMaker = "vorranoMakeFetch";
using FetchMaker = AbortableFetch*();

} // namespace vorrano::linux_platform
