#pragma once

#include "platform/qt/QtControl.h"
#include "platform/qt/TabWidget.h"

#include <vector>

namespace vorrano::qt {

class QtView;
class ScreenArea;

// A tab view. A tab that is chosen while it takes no input is left again.
class QtTabView final : public QtControl<platform::TabView, TabWidget> {
public:
    QtTabView(TabWidget& tabs, const QtSurroundings& surroundings);
    ~QtTabView() override;

    [[nodiscard]] int count() const override;
    [[nodiscard]] int selectedIndex() const override;
    [[nodiscard]] std::string selectedLabel() const override;
    void setView(int index, std::shared_ptr<platform::View> view) override;
    void onSelect(std::function<void()> told) override;

private:
    void currentChanged(int index);
    void tell();

    // The labels of the layout: a desktop may put a mnemonic into the widget's.
    std::vector<std::string> m_labels;
    // What holds the views: one for each page, which owns it.
    std::vector<ScreenArea*> m_areas;
    std::vector<std::shared_ptr<QtView>> m_views;
    std::function<void()> m_select;
    int m_index;
    bool m_ownChange = false;
};

} // namespace vorrano::qt
