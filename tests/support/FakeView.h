#pragma once

#include "platform/Layouts.h"
#include "support/FakeMainQueue.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vorrano::support {

class FakeControl;
class FakeWindow;

// A screen whose controls come into being when they are first named, by the program or by the test. A name stands for
// one kind of control: asking for another throws LayoutError.
//
// The verbs of the person (type, press, choose, selectTab) deliver nothing, and answer false, while an alert, a panel
// or a pause is on, while a sheet is over the view's window, and on a control that is disabled or hidden.
class FakeView : public platform::View, public std::enable_shared_from_this<FakeView> {
public:
    explicit FakeView(FakeMainQueue& mainQueue);
    ~FakeView() override;

    platform::Button& button(std::string_view name) override;
    platform::TextField& textField(std::string_view name) override;
    platform::PopUpButton& popUpButton(std::string_view name) override;
    platform::ProgressIndicator& progressIndicator(std::string_view name) override;
    platform::ProgressBar& progressBar(std::string_view name) override;
    platform::Label& label(std::string_view name) override;
    platform::TabView& tabView(std::string_view name) override;
    void setAlpha(double alpha) override { m_alpha = alpha; }
    [[nodiscard]] double alpha() const override { return m_alpha; }

    // The person.
    bool type(std::string_view textField, const std::string& text);
    bool press(std::string_view button);
    bool choose(std::string_view popUpButton, const std::string& title);
    bool selectTab(std::string_view tabView, int index);

    // The layout: what it holds before the program touches it. No handler hears it.
    void setTextQuietly(std::string_view control, const std::string& text);
    void setItems(std::string_view popUpButton, const std::vector<std::string>& titles);
    void setTabs(std::string_view tabView, const std::vector<std::string>& labels);

    // Called each time that the bar is given a new progress, in place of painting it.
    void setDrawing(std::string_view progressBar, std::function<void()> draw);

    // What is on the screen. A name that nobody has used yet fails the test.
    [[nodiscard]] std::string text(std::string_view textField) const;
    [[nodiscard]] std::string labelText(std::string_view label) const;
    // What a screen reader has read out of the label, in order.
    [[nodiscard]] const std::vector<std::string>& announcements(std::string_view label) const;
    // How much is done, of how much.
    [[nodiscard]] std::pair<std::size_t, std::size_t> progress(std::string_view progressBar) const;
    [[nodiscard]] bool isEnabled(std::string_view control) const;
    [[nodiscard]] bool isHidden(std::string_view control) const;
    [[nodiscard]] bool isAnimating(std::string_view progressIndicator) const;
    [[nodiscard]] std::vector<std::string> items(std::string_view popUpButton) const;
    [[nodiscard]] std::optional<std::string> selectedItem(std::string_view popUpButton) const;
    [[nodiscard]] int selectedTab(std::string_view tabView) const;

    // The view that the page holds, or null.
    [[nodiscard]] std::shared_ptr<FakeView> pageOf(std::string_view tabView, int index) const;

    // Whether the program has set a handler for the control.
    [[nodiscard]] bool hasHandler(std::string_view control) const;
    [[nodiscard]] bool hasControl(std::string_view name) const;

    // Whether the person's input is kept from this view.
    [[nodiscard]] bool isBlocked() const;

    // For FakeWindow and the tab view: what the view is the content of.
    void setWindow(FakeWindow* window) { m_window = window; }
    void setParent(std::weak_ptr<FakeView> parent) { m_parent = std::move(parent); }

private:
    template <class Kind>
    Kind& obtain(std::string_view name);
    template <class Kind>
    const Kind& existing(std::string_view name) const;
    const FakeControl& anyKind(std::string_view name) const;
    bool takesInput(const FakeControl& control) const;
    void deliver(const platform::Action& action, platform::Control& sender);

    FakeMainQueue& m_mainQueue;
    std::map<std::string, std::unique_ptr<FakeControl>, std::less<>> m_controls;
    FakeWindow* m_window = nullptr;
    std::weak_ptr<FakeView> m_parent;
    double m_alpha = 1.0;
};

} // namespace vorrano::support
