#include "platform/qt/QtAccessibility.h"

#include "platform/qt/BusReports.h"
#include "platform/qt/FieldAccessible.h"
#include "platform/qt/PickList.h"
#include "platform/qt/PickListAccessible.h"
#include "platform/qt/Spinner.h"
#include "platform/qt/TabWidget.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QLabel>
#include <QPointer>
#include <QStackedWidget>

#include <vector>

namespace vorrano::qt {

namespace {

// One tab.
class TabAccessible final : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    TabAccessible(TabBar& bar, int index)
        : m_bar(&bar)
        , m_index(index)
    {}

    bool isValid() const override { return m_bar && m_index < m_bar->count(); }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return isValid() ? m_bar->window()->windowHandle() : nullptr; }
    QAccessible::Role role() const override { return QAccessible::PageTab; }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(m_bar.data()); }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    void setText(QAccessible::Text, const QString&) override {}

    QString text(QAccessible::Text kind) const override
    {
        if (!isValid()) {
            return {};
        }
        switch (kind) {
        case QAccessible::Name:
            return withoutMnemonic(m_bar->tabText(m_index));
        case QAccessible::Accelerator:
            return QKeySequence::mnemonic(m_bar->tabText(m_index)).toString(QKeySequence::NativeText);
        case QAccessible::Description:
            return m_bar->tabToolTip(m_index);
        default:
            return {};
        }
    }

    QRect rect() const override
    {
        if (!isValid()) {
            return {};
        }
        const QRect local = m_bar->tabRect(m_index);
        return {m_bar->mapToGlobal(local.topLeft()), local.size()};
    }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        state.selectable = true;
        state.selected = m_index == m_bar->currentIndex();
        state.focusable = true;
        state.focused = state.selected && m_bar->hasFocus();
        state.disabled = !m_bar->isTabEnabled(m_index);
        state.invisible = !m_bar->isVisible();
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    QStringList keyBindingsForAction(const QString&) const override { return {text(QAccessible::Accelerator)}; }
    void doAction(const QString& name) override
    {
        if (isValid() && name == pressAction()) {
            m_bar->choose(m_index);
        }
    }

private:
    const QPointer<TabBar> m_bar;
    const int m_index;
};

// The row of tabs: its children are the tabs alone.
class TabBarAccessible final : public QAccessibleWidget {
public:
    explicit TabBarAccessible(TabBar& bar)
        : QAccessibleWidget(&bar, QAccessible::PageTabList)
        , m_bar(bar)
    {}
    ~TabBarAccessible() override
    {
        for (const auto id : m_tabs) {
            QAccessible::deleteAccessibleInterface(id);
        }
    }

    int childCount() const override { return m_bar.count(); }

    QAccessibleInterface* child(int index) const override
    {
        if (index < 0 || index >= m_bar.count()) {
            return nullptr;
        }
        for (int next = static_cast<int>(m_tabs.size()); next <= index; ++next) {
            m_tabs.push_back(QAccessible::registerAccessibleInterface(new TabAccessible(m_bar, next)));
        }
        return QAccessible::accessibleInterface(m_tabs[static_cast<std::size_t>(index)]);
    }

    int indexOfChild(const QAccessibleInterface* wanted) const override
    {
        for (int index = 0; index < m_bar.count(); ++index) {
            if (child(index) == wanted) {
                return index;
            }
        }
        return -1;
    }

    QAccessibleInterface* childAt(int x, int y) const override
    {
        return child(m_bar.tabAt(m_bar.mapFromGlobal(QPoint(x, y))));
    }

    QAccessibleInterface* focusChild() const override
    {
        return m_bar.hasFocus() ? child(m_bar.currentIndex()) : nullptr;
    }

private:
    TabBar& m_bar;
    mutable std::vector<QAccessible::Id> m_tabs;
};

// A line that is read out when it appears.
class NoticeAccessible final : public QAccessibleWidget {
public:
    explicit NoticeAccessible(QLabel& label)
        : QAccessibleWidget(&label, QAccessible::Notification)
        , m_label(label)
    {}

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name ? m_label.text() : QAccessibleWidget::text(kind);
    }

private:
    const QLabel& m_label;
};

// A widget without a meaning of its own, which is a window when it stands alone.
class WindowAccessible final : public QAccessibleWidget {
public:
    explicit WindowAccessible(QWidget& window)
        : QAccessibleWidget(&window)
        , m_window(window)
    {}

    QAccessible::Role role() const override
    {
        if (!m_window.isWindow()) {
            return QAccessibleWidget::role();
        }
        return m_window.isModal() ? QAccessible::Dialog : QAccessible::Window;
    }

private:
    const QWidget& m_window;
};

// A notification, as that is what a screen reader reads out when it appears.
class SpinnerAccessible final : public QAccessibleWidget {
public:
    explicit SpinnerAccessible(Spinner& spinner)
        : QAccessibleWidget(&spinner, QAccessible::Notification)
        , m_spinner(spinner)
    {}

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.busy = m_spinner.isTurning();
        return state;
    }

private:
    const Spinner& m_spinner;
};

QAccessibleInterface* makeAccessible(const QString&, QObject* object)
{
    if (auto* const label = dynamic_cast<QLabel*>(object); label != nullptr && isAnnounced(*label)) {
        return new NoticeAccessible(*label);
    }
    if (auto* const bar = dynamic_cast<TabBar*>(object)) {
        return new TabBarAccessible(*bar);
    }
    if (auto* const spinner = dynamic_cast<Spinner*>(object)) {
        return new SpinnerAccessible(*spinner);
    }
    if (auto* const field = qobject_cast<QLineEdit*>(object)) {
        return new FieldAccessible(*field);
    }
    if (auto* const list = dynamic_cast<PickList*>(object)) {
        return new PickListAccessible(*list);
    }
    if (auto* const pages = qobject_cast<QStackedWidget*>(object)) {
        // Nothing to a person, who would hear of "layered panes" on the way into each page.
        return new QAccessibleWidget(pages);
    }
    auto* const widget = dynamic_cast<QWidget*>(object);
    if (widget != nullptr && widget->metaObject() == &QWidget::staticMetaObject) {
        return new WindowAccessible(*widget);
    }
    return nullptr;
}

} // namespace

QString withoutMnemonic(const QString& label)
{
    QString plain;
    for (qsizetype i = 0; i < label.size(); ++i) {
        if (label[i] == u'&' && i + 1 < label.size()) {
            ++i;
        }
        plain += label[i];
    }
    return plain;
}

void installAccessibility()
{
    QAccessible::installFactory(makeAccessible);
    installBusReports();
}

} // namespace vorrano::qt
