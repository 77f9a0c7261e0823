#pragma once

#include "platform/Layouts.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// The controls of a FakeView: what the program set, and the handlers that the view's verbs call.
namespace vorrano::support {

class FakeView;

class FakeControl : public virtual platform::Control {
public:
    void setEnabled(bool enabled) override { m_enabled = enabled; }
    [[nodiscard]] bool isEnabled() const override { return m_enabled; }
    void setHidden(bool hidden) override { m_hidden = hidden; }
    [[nodiscard]] bool isHidden() const override { return m_hidden; }

    [[nodiscard]] virtual bool hasHandler() const { return false; }

private:
    bool m_enabled = true;
    bool m_hidden = false;
};

class FakeButton : public FakeControl, public platform::Button {
public:
    void onPress(platform::Action action) override { handler = std::move(action); }
    [[nodiscard]] bool hasHandler() const override { return handler != nullptr; }

    platform::Action handler;
};

class FakeTextField : public FakeControl, public platform::TextField {
public:
    [[nodiscard]] std::string text() const override { return content; }
    void setText(const std::string& text) override { content = text; }
    void onChange(platform::Action action) override { handler = std::move(action); }
    [[nodiscard]] bool hasHandler() const override { return handler != nullptr; }

    std::string content;
    platform::Action handler;
};

class FakePopUpButton : public FakeControl, public platform::PopUpButton {
public:
    void removeAllItems() override
    {
        titles.clear();
        selected.reset();
    }

    void addItems(const std::vector<std::string>& added) override
    {
        std::copy_if(added.begin(), added.end(), std::back_inserter(titles),
                     [this](const std::string& title) { return !has(title); });
        if (!selected && !titles.empty()) {
            selected = titles.front();
        }
    }

    void selectItem(const std::string& title) override
    {
        if (has(title)) {
            selected = title;
        }
    }

    [[nodiscard]] std::optional<std::string> titleOfSelectedItem() const override { return selected; }
    void onChoose(platform::Action action) override { handler = std::move(action); }
    [[nodiscard]] bool hasHandler() const override { return handler != nullptr; }
    [[nodiscard]] bool has(const std::string& title) const
    {
        return std::find(titles.begin(), titles.end(), title) != titles.end();
    }

    std::vector<std::string> titles;
    std::optional<std::string> selected;
    platform::Action handler;
};

class FakeProgressIndicator : public FakeControl, public platform::ProgressIndicator {
public:
    FakeProgressIndicator() { FakeControl::setHidden(true); }
    void startAnimation() override { m_animating = true; }
    void stopAnimation() override { m_animating = false; }
    [[nodiscard]] bool isAnimating() const override { return m_animating; }

private:
    bool m_animating = false;
};

class FakeLabel : public FakeControl, public platform::Label {
public:
    void setText(const std::string& text) override { content = text; }
    void announce() override { announced.push_back(content); }
    // A label that appears is read out by itself.
    void setHidden(bool hidden) override
    {
        if (isHidden() && !hidden) {
            announce();
        }
        FakeControl::setHidden(hidden);
    }

    std::string content;
    // What a screen reader has read out.
    std::vector<std::string> announced;
};

class FakeProgressBar : public FakeControl, public platform::ProgressBar {
public:
    void setProgress(std::size_t done, std::size_t all) override
    {
        progress = {done, all};
        if (draw) {
            draw();
        }
    }

    std::pair<std::size_t, std::size_t> progress;
    std::function<void()> draw;
};

class FakeTabView : public FakeControl, public platform::TabView {
public:
    struct Page {
        std::string label;
        std::shared_ptr<platform::View> view;
    };

    explicit FakeTabView(std::weak_ptr<FakeView> owner)
        : m_owner(std::move(owner))
    {}
    [[nodiscard]] int count() const override { return static_cast<int>(pages.size()); }
    [[nodiscard]] int selectedIndex() const override { return selected; }
    [[nodiscard]] std::string selectedLabel() const override;
    void setView(int index, std::shared_ptr<platform::View> view) override;
    void onSelect(std::function<void()> told) override { handler = std::move(told); }
    [[nodiscard]] bool hasHandler() const override { return handler != nullptr; }
    [[nodiscard]] bool hasPage(int index) const { return index >= 0 && index < count(); }
    [[nodiscard]] const Page& page(int index) const { return pages.at(static_cast<std::size_t>(index)); }

    std::vector<Page> pages;
    int selected = 0;
    std::function<void()> handler;

private:
    std::weak_ptr<FakeView> m_owner;
};

} // namespace vorrano::support
