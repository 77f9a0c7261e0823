#pragma once

#include "platform/qt/PickListAccessible.h"

#include <QComboBox>

#include <functional>
#include <utility>

namespace vorrano::qt {

// The pick list of the layouts: it asks before it opens, as the accessibility bus opens any.
class PickList final : public QComboBox {
public:
    explicit PickList(QWidget* parent = nullptr)
        : QComboBox(parent)
    {
        connect(this, &QComboBox::currentIndexChanged, this, [this](int index) { reportChoice(*this, index); });
    }

    void mayOpen(std::function<bool()> asked) { m_mayOpen = std::move(asked); }

    void showPopup() override
    {
        if (!m_mayOpen || m_mayOpen()) {
            QComboBox::showPopup();
        }
    }

private:
    std::function<bool()> m_mayOpen;
};

} // namespace vorrano::qt
