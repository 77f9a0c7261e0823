#include "support/FakeView.h"

#include "support/FakeControls.h"
#include "support/FakeLayouts.h"

#include <iterator>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

namespace vorrano::support {

std::string FakeTabView::selectedLabel() const { return hasPage(selected) ? page(selected).label : std::string(); }

void FakeTabView::setView(int index, std::shared_ptr<platform::View> view)
{
    if (!hasPage(index)) {
        ADD_FAILURE() << "the tab view has no page " << index << ": give it some with setTabs()";
        return;
    }
    if (const auto content = std::dynamic_pointer_cast<FakeView>(view)) {
        content->setParent(m_owner);
    }
    // What was there goes only when the page has the new one.
    const auto old = std::exchange(pages[static_cast<std::size_t>(index)].view, std::move(view));
}

FakeView::FakeView(FakeMainQueue& mainQueue)
    : m_mainQueue(mainQueue)
{}

FakeView::~FakeView() = default;

template <class Kind>
Kind& FakeView::obtain(std::string_view name)
{
    EXPECT_TRUE(m_mainQueue.isMainThread()) << "controls are the main thread's";
    auto known = m_controls.find(name);
    if (known == m_controls.end()) {
        std::unique_ptr<FakeControl> made;
        if constexpr (std::is_same_v<Kind, FakeTabView>) {
            made = std::make_unique<FakeTabView>(weak_from_this());
        } else {
            made = std::make_unique<Kind>();
        }
        known = m_controls.emplace(std::string(name), std::move(made)).first;
    }
    if (auto* const control = dynamic_cast<Kind*>(known->second.get())) {
        return *control;
    }
    throw platform::LayoutError("the control " + std::string(name) + " is of another kind");
}

const FakeControl& FakeView::anyKind(std::string_view name) const
{
    const auto known = m_controls.find(name);
    if (known == m_controls.end()) {
        const auto what = "nobody has used a control named " + std::string(name);
        ADD_FAILURE() << what;
        throw std::logic_error(what);
    }
    return *known->second;
}

template <class Kind>
const Kind& FakeView::existing(std::string_view name) const
{
    if (const auto* const control = dynamic_cast<const Kind*>(&anyKind(name))) {
        return *control;
    }
    const auto what = "the control " + std::string(name) + " is of another kind";
    ADD_FAILURE() << what;
    throw std::logic_error(what);
}

platform::Button& FakeView::button(std::string_view name) { return obtain<FakeButton>(name); }

platform::TextField& FakeView::textField(std::string_view name) { return obtain<FakeTextField>(name); }

platform::PopUpButton& FakeView::popUpButton(std::string_view name) { return obtain<FakePopUpButton>(name); }

platform::ProgressIndicator& FakeView::progressIndicator(std::string_view name)
{
    return obtain<FakeProgressIndicator>(name);
}

platform::ProgressBar& FakeView::progressBar(std::string_view name) { return obtain<FakeProgressBar>(name); }

platform::Label& FakeView::label(std::string_view name) { return obtain<FakeLabel>(name); }

platform::TabView& FakeView::tabView(std::string_view name) { return obtain<FakeTabView>(name); }

bool FakeView::isBlocked() const
{
    if (m_mainQueue.isHeld() || (m_window != nullptr && m_window->hasSheet())) {
        return true;
    }
    const auto parent = m_parent.lock();
    return parent && parent->isBlocked();
}

bool FakeView::takesInput(const FakeControl& control) const
{
    return !isBlocked() && control.isEnabled() && !control.isHidden();
}

// The view stays until its handler has returned, as the handler may let go of it.
void FakeView::deliver(const platform::Action& action, platform::Control& sender)
{
    const auto self = shared_from_this();
    if (const auto handler = action) {
        m_mainQueue.time().runGuarded([&] { handler(sender); });
    }
}

bool FakeView::type(std::string_view textField, const std::string& text)
{
    auto& field = obtain<FakeTextField>(textField);
    if (!takesInput(field)) {
        return false;
    }
    field.content = text;
    deliver(field.handler, field);
    return true;
}

bool FakeView::press(std::string_view button)
{
    auto& pressed = obtain<FakeButton>(button);
    if (!takesInput(pressed)) {
        return false;
    }
    EXPECT_TRUE(pressed.hasHandler()) << "the program does not know the button " << button;
    deliver(pressed.handler, pressed);
    return true;
}

bool FakeView::choose(std::string_view popUpButton, const std::string& title)
{
    auto& list = obtain<FakePopUpButton>(popUpButton);
    if (!takesInput(list)) {
        return false;
    }
    if (!list.has(title)) {
        ADD_FAILURE() << popUpButton << " has no entry " << title;
        return false;
    }
    list.selected = title;
    deliver(list.handler, list);
    return true;
}

bool FakeView::selectTab(std::string_view tabView, int index)
{
    auto& tabs = obtain<FakeTabView>(tabView);
    if (!takesInput(tabs)) {
        return false;
    }
    if (!tabs.hasPage(index)) {
        ADD_FAILURE() << tabView << " has no page " << index;
        return false;
    }
    tabs.selected = index;
    deliver(
        [told = tabs.handler](platform::Control&) {
            if (told) {
                told();
            }
        },
        tabs);
    return true;
}

void FakeView::setTextQuietly(std::string_view control, const std::string& text)
{
    obtain<FakeTextField>(control).content = text;
}

void FakeView::setItems(std::string_view popUpButton, const std::vector<std::string>& titles)
{
    auto& list = obtain<FakePopUpButton>(popUpButton);
    list.removeAllItems();
    list.addItems(titles);
}

void FakeView::setTabs(std::string_view tabView, const std::vector<std::string>& labels)
{
    auto& tabs = obtain<FakeTabView>(tabView);
    tabs.pages.clear();
    std::transform(labels.begin(), labels.end(), std::back_inserter(tabs.pages), [](const std::string& label) {
        return FakeTabView::Page{label, nullptr};
    });
}

void FakeView::setDrawing(std::string_view progressBar, std::function<void()> draw)
{
    obtain<FakeProgressBar>(progressBar).draw = std::move(draw);
}

std::string FakeView::text(std::string_view textField) const { return existing<FakeTextField>(textField).content; }

std::string FakeView::labelText(std::string_view label) const { return existing<FakeLabel>(label).content; }

const std::vector<std::string>& FakeView::announcements(std::string_view label) const
{
    return existing<FakeLabel>(label).announced;
}

std::pair<std::size_t, std::size_t> FakeView::progress(std::string_view progressBar) const
{
    return existing<FakeProgressBar>(progressBar).progress;
}

bool FakeView::isEnabled(std::string_view control) const { return anyKind(control).isEnabled(); }

bool FakeView::isHidden(std::string_view control) const { return anyKind(control).isHidden(); }

bool FakeView::isAnimating(std::string_view progressIndicator) const
{
    return existing<FakeProgressIndicator>(progressIndicator).isAnimating();
}

std::vector<std::string> FakeView::items(std::string_view popUpButton) const
{
    return existing<FakePopUpButton>(popUpButton).titles;
}

std::optional<std::string> FakeView::selectedItem(std::string_view popUpButton) const
{
    return existing<FakePopUpButton>(popUpButton).selected;
}

int FakeView::selectedTab(std::string_view tabView) const { return existing<FakeTabView>(tabView).selected; }

std::shared_ptr<FakeView> FakeView::pageOf(std::string_view tabView, int index) const
{
    const auto& tabs = existing<FakeTabView>(tabView);
    return tabs.hasPage(index) ? std::dynamic_pointer_cast<FakeView>(tabs.page(index).view) : nullptr;
}

bool FakeView::hasHandler(std::string_view control) const
{
    const auto known = m_controls.find(control);
    return known != m_controls.end() && known->second->hasHandler();
}

bool FakeView::hasControl(std::string_view name) const { return m_controls.find(name) != m_controls.end(); }

} // namespace vorrano::support
