#include "device/NoticeLine.h"

#include "platform/Controls.h"

#include <utility>

namespace vorrano::device {

NoticeLine::NoticeLine(platform::Label& label)
    : m_label(label)
{
    m_label.setHidden(true);
}

void NoticeLine::show(const std::optional<std::string>& text)
{
    const auto before = std::exchange(m_shown, text);
    if (text == before) {
        return;
    }
    m_label.setText(text.value_or(""));
    m_label.setHidden(!text);
    if (text && before) {
        m_label.announce();
    }
}

} // namespace vorrano::device
