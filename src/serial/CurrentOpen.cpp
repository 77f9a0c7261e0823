#include "serial/CurrentOpen.h"

#include <utility>

namespace vorrano::serial {

CurrentOpen::Pointer CurrentOpen::get() const
{
    const platform::MutexLock lock(m_mutex);
    return m_open;
}

std::uint64_t CurrentOpen::number() const
{
    const platform::MutexLock lock(m_mutex);
    return m_number;
}

bool CurrentOpen::beginOpen()
{
    const platform::MutexLock lock(m_mutex);
    if (m_open || m_isOpening || m_isClosing) {
        return false;
    }
    m_isOpening = true;
    return true;
}

CurrentOpen::Pointer CurrentOpen::setOpened(platform::Terminal& terminal, int descriptor)
{
    const platform::MutexLock lock(m_mutex);
    m_isOpening = false;
    m_open = std::make_shared<OpenPort>(terminal, descriptor, ++m_number);
    return m_open;
}

void CurrentOpen::setOpenFailed()
{
    const platform::MutexLock lock(m_mutex);
    m_isOpening = false;
}

CurrentOpen::Pointer CurrentOpen::beginClose(std::optional<std::uint64_t> number)
{
    const platform::MutexLock lock(m_mutex);
    if (!m_open || m_isClosing || (number && *number != m_number)) {
        return nullptr;
    }
    m_isClosing = true;
    return m_open;
}

void CurrentOpen::setEnded()
{
    const platform::MutexLock lock(m_mutex);
    m_open->end();
    m_open = nullptr;
}

void CurrentOpen::setClosed()
{
    const platform::MutexLock lock(m_mutex);
    m_isClosing = false;
}

void CurrentOpen::setCloseFailed(Pointer open)
{
    const platform::MutexLock lock(m_mutex);
    m_isClosing = false;
    m_open = std::move(open);
    m_open->resume();
}

} // namespace vorrano::serial
