#include "platform/qt/TabWidget.h"

#include <QApplication>
#include <QMouseEvent>
#include <QShortcutEvent>
#include <QStyle>
#include <QWheelEvent>

#include <utility>

namespace vorrano::qt {

TabBar::TabBar(QWidget* parent)
    : QTabBar(parent)
{
    // Before the tab widget hears of it and hides the page with the focus.
    connect(this, &QTabBar::currentChanged, this, &TabBar::takeFocusFromPage);
}

void TabBar::onChosenAgain(std::function<void()> told) { m_chosenAgain = std::move(told); }

void TabBar::mayChoose(std::function<bool()> asked) { m_mayChoose = std::move(asked); }

void TabBar::choose(int index)
{
    if (!isTabEnabled(index) || (m_mayChoose && !m_mayChoose())) {
        return;
    }
    if (index == currentIndex()) {
        tellChosenAgain();
    } else {
        setCurrentIndex(index);
    }
}

bool TabBar::event(QEvent* event)
{
    if (event->type() != QEvent::Shortcut) {
        return QTabBar::event(event);
    }
    const auto& key = static_cast<QShortcutEvent*>(event)->key();
    const bool again = !key.isEmpty() && key == QKeySequence::mnemonic(tabText(currentIndex()));
    const bool handled = QTabBar::event(event);
    if (again && handled) {
        tellChosenAgain();
    }
    return handled;
}

void TabBar::mousePressEvent(QMouseEvent* event)
{
    const bool again = choosesAgain(*event);
    QTabBar::mousePressEvent(event);
    if (again) {
        tellChosenAgain();
    }
}

void TabBar::mouseReleaseEvent(QMouseEvent* event)
{
    const bool again = choosesAgain(*event);
    QTabBar::mouseReleaseEvent(event);
    if (again) {
        tellChosenAgain();
    }
}

void TabBar::wheelEvent(QWheelEvent* event) { event->ignore(); }

void TabBar::takeFocusFromPage()
{
    const auto* const focused = QApplication::focusWidget();
    if (focused != nullptr && focused != this && parentWidget()->isAncestorOf(focused)) {
        setFocus();
    }
}

bool TabBar::choosesAgain(const QMouseEvent& event) const
{
    // A style chooses on the press or on the release.
    return event.button() == Qt::LeftButton && event.type() == style()->styleHint(QStyle::SH_TabBar_SelectMouseType) &&
           currentIndex() >= 0 && tabAt(event.position().toPoint()) == currentIndex();
}

void TabBar::tellChosenAgain() const
{
    if (const auto told = m_chosenAgain) {
        told();
    }
}

TabWidget::TabWidget(QWidget* parent)
    : QTabWidget(parent)
    , m_bar(new TabBar(this))
{
    setTabBar(m_bar);
}

bool TabWidget::event(QEvent* event)
{
    if (event->type() != QEvent::LayoutRequest || !isVisible()) {
        return QTabWidget::event(event);
    }
    if (const QSize needed = m_bar->sizeHint(); needed != m_roomOfBar) {
        m_roomOfBar = needed;
        return QTabWidget::event(event);
    }
    // The row stays as it is, so only the window may have to give more room. Qt would paint the row and the whole page
    // anew for each round of the page's layout.
    updateGeometry();
    return true;
}

} // namespace vorrano::qt
