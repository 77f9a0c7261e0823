#include "platform/posix/LazyFetch.h"

#include "platform/SystemLog.h"

#include <dlfcn.h>

namespace vorrano::posix_platform {

namespace {

// The module stays loaded: the libraries behind libcurl do not take to being unloaded.
platform::UrlFetch* fetchOf(const char* name)
{
    void* module = dlopen(name, RTLD_NOW | RTLD_LOCAL);
    void* maker = module == nullptr ? nullptr : dlsym(module, kFetchMaker);
    return maker == nullptr ? nullptr : reinterpret_cast<platform::UrlFetch* (*)()>(maker)();
}

} // namespace

LazyFetch::LazyFetch(platform::SystemLog& log, const char* module)
    : m_log(log)
    , m_module(module)
{}

std::optional<std::string> LazyFetch::contentsOfUrl(const std::string& address)
{
    auto* const fetch = loaded();
    return fetch == nullptr ? std::nullopt : fetch->contentsOfUrl(address);
}

void LazyFetch::abort()
{
    const platform::MutexLock lock(m_mutex);
    m_aborted = true;
    if (m_fetch) {
        m_fetch->abort();
    }
}

platform::UrlFetch* LazyFetch::loaded()
{
    const platform::MutexLock lock(m_mutex);
    if (m_aborted) {
        return nullptr;
    }
    if (!m_fetch) {
        m_fetch.reset(fetchOf(m_module));
        if (!m_fetch) {
            m_log.write("The module for web fetches can't be loaded");
        }
    }
    return m_fetch.get();
}

} // namespace vorrano::posix_platform
