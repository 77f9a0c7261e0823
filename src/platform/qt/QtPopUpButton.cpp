#include "platform/qt/QtPopUpButton.h"

#include "platform/MainQueue.h"

#include <QPointer>

#include <utility>

namespace vorrano::qt {

QtPopUpButton::QtPopUpButton(PickList& list, const QtSurroundings& surroundings)
    : QtControl(list, surroundings)
    , m_index(list.currentIndex())
{
    // A choice from the opened list, by key or by wheel is told by activated(), also of the entry that was chosen
    // already; one over the accessibility bus is a change of the index alone.
    QObject::connect(&list, &QComboBox::currentIndexChanged, context(), [this] { indexChanged(); });
    QObject::connect(&list, &QComboBox::activated, context(), [this] { activated(); });
    list.mayOpen([this] { return takesInput(); });
}

QtPopUpButton::~QtPopUpButton() { widget().mayOpen(nullptr); }

void QtPopUpButton::removeAllItems()
{
    changeMyself([this] { widget().clear(); });
}

void QtPopUpButton::addItems(const std::vector<std::string>& titles)
{
    changeMyself([&] {
        for (const auto& title : titles) {
            if (indexOf(title) < 0) {
                widget().addItem(QString::fromStdString(title));
            }
        }
    });
}

void QtPopUpButton::selectItem(const std::string& title)
{
    if (const int index = indexOf(title); index >= 0) {
        changeMyself([&] { widget().setCurrentIndex(index); });
    }
}

std::optional<std::string> QtPopUpButton::titleOfSelectedItem() const
{
    if (m_index < 0) {
        return std::nullopt;
    }
    return widget().itemText(m_index).toStdString();
}

void QtPopUpButton::onChoose(platform::Action action) { m_choose = std::move(action); }

void QtPopUpButton::indexChanged()
{
    if (m_ownChange) {
        return;
    }
    if (!takesInput()) {
        changeMyself([this] { widget().setCurrentIndex(m_index); });
        return;
    }
    m_index = widget().currentIndex();
    if (!std::exchange(m_untold, true)) {
        surroundings().mainQueue.async([this, alive = QPointer<const QObject>(context())] {
            if (alive) {
                tellIfUntold();
            }
        });
    }
}

void QtPopUpButton::activated()
{
    if (takesInput()) {
        m_untold = false;
        deliver(m_choose);
    }
}

void QtPopUpButton::tellIfUntold()
{
    if (std::exchange(m_untold, false)) {
        deliver(m_choose);
    }
}

int QtPopUpButton::indexOf(const std::string& title) const
{
    return widget().findText(QString::fromStdString(title), Qt::MatchExactly | Qt::MatchCaseSensitive);
}

template <class Change>
void QtPopUpButton::changeMyself(Change&& change)
{
    m_ownChange = true;
    change();
    m_index = widget().currentIndex();
    m_ownChange = false;
}

} // namespace vorrano::qt
