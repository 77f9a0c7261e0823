#include "platform/qt/QtTabView.h"

#include "platform/qt/QtAccessibility.h"
#include "platform/qt/QtView.h"
#include "platform/qt/ScreenArea.h"

#include <QVBoxLayout>

#include <utility>

namespace vorrano::qt {

QtTabView::QtTabView(TabWidget& tabs, const QtSurroundings& surroundings)
    : QtControl(tabs, surroundings)
    , m_views(static_cast<std::size_t>(tabs.count()))
    , m_index(tabs.currentIndex())
{
    for (int index = 0; index < tabs.count(); ++index) {
        m_labels.push_back(withoutMnemonic(tabs.tabText(index)).toStdString());
        auto* const layout = new QVBoxLayout(tabs.widget(index));
        layout->setContentsMargins({});
        m_areas.push_back(new ScreenArea);
        layout->addWidget(m_areas.back());
    }
    QObject::connect(&tabs, &QTabWidget::currentChanged, context(), [this](int index) { currentChanged(index); });
    tabs.bar().onChosenAgain([this] {
        if (takesInput()) {
            tell();
        }
    });
    tabs.bar().mayChoose([this] { return takesInput(); });
}

QtTabView::~QtTabView()
{
    widget().bar().onChosenAgain(nullptr);
    widget().bar().mayChoose(nullptr);
    for (const auto& view : m_views) {
        if (view) {
            view->takeOffScreen();
        }
    }
}

int QtTabView::count() const { return static_cast<int>(m_labels.size()); }

int QtTabView::selectedIndex() const { return m_index; }

std::string QtTabView::selectedLabel() const
{
    return m_index < 0 ? std::string() : m_labels[static_cast<std::size_t>(m_index)];
}

void QtTabView::setView(int index, std::shared_ptr<platform::View> view)
{
    auto& shown = m_views.at(static_cast<std::size_t>(index));
    if (shown) {
        shown->takeOffScreen();
    }
    shown = QtView::of(view);
    if (shown) {
        m_areas.at(static_cast<std::size_t>(index))->showContent(shown->root());
    }
}

void QtTabView::onSelect(std::function<void()> told) { m_select = std::move(told); }

void QtTabView::currentChanged(int index)
{
    if (m_ownChange) {
        return;
    }
    if (!takesInput()) {
        m_ownChange = true;
        widget().setCurrentIndex(m_index);
        m_ownChange = false;
        return;
    }
    m_index = index;
    tell();
}

void QtTabView::tell()
{
    if (const auto told = m_select) {
        platform::guarded(surroundings().log, told);
    }
}

} // namespace vorrano::qt
