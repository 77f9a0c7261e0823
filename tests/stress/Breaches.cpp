#include "stress/Breaches.h"

namespace vorrano::stress {

void Breaches::add(const std::string& text)
{
    const std::lock_guard lock(m_mutex);
    m_texts.push_back(text);
    m_any = true;
}

std::vector<std::string> Breaches::all() const
{
    const std::lock_guard lock(m_mutex);
    return m_texts;
}

} // namespace vorrano::stress
