#pragma once

#include "platform/Layouts.h"
#include "support/FakeMainQueue.h"
#include "support/FakeView.h"

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vorrano::support {

class FakeLayouts;

// A window of the program's. The world keeps no reference to it: it closes when the program drops it.
class FakeWindow : public platform::Window, public std::enable_shared_from_this<FakeWindow> {
public:
    FakeWindow(FakeLayouts& layouts, std::string name, std::shared_ptr<FakeView> view);
    ~FakeWindow() override;

    [[nodiscard]] std::shared_ptr<platform::View> view() override;
    void show() override;
    void close() override;
    [[nodiscard]] bool isVisible() const override { return m_visible; }
    void beginSheet(const std::shared_ptr<platform::Window>& sheet, std::function<void(int)> completion) override;
    void endSheet(platform::Window& sheet, int returnCode) override;
    [[nodiscard]] platform::Window* sheetParent() override { return m_sheetParent; }

    // The person makes it the active window (a visible one).
    void activate();

    // The person closes it: a sheet ends with 0; the last visible window's closing ends the program. Nothing happens,
    // and the answer is false, while it is blocked.
    bool closeAsPerson();

    [[nodiscard]] const std::string& name() const { return m_name; }
    [[nodiscard]] FakeView& content() { return *m_view; }
    [[nodiscard]] bool hasSheet() const { return m_sheet != nullptr; }

private:
    friend class FakeLayouts;
    void disappear();

    FakeLayouts* m_layouts;
    std::string m_name;
    std::shared_ptr<FakeView> m_view;
    std::shared_ptr<FakeWindow> m_sheet;
    std::function<void(int)> m_completion;
    FakeWindow* m_sheetParent = nullptr;
    bool m_visible = false;
};

// Layouts of any name. The windows and views must not outlive it.
class FakeLayouts : public platform::Layouts {
public:
    explicit FakeLayouts(FakeMainQueue& mainQueue);
    ~FakeLayouts() override;

    [[nodiscard]] std::shared_ptr<platform::View> loadView(std::string_view name) override;
    [[nodiscard]] std::shared_ptr<platform::Window> loadWindow(std::string_view name) override;
    [[nodiscard]] std::shared_ptr<platform::Window> keyWindow() override;

    // The one loaded last under that name that is still alive; without one the test fails and std::logic_error is
    // thrown. window(name).content() is view(name), if the name was loaded as a window.
    [[nodiscard]] FakeView& view(std::string_view name);
    [[nodiscard]] FakeWindow& window(std::string_view name);
    [[nodiscard]] bool hasView(std::string_view name) const;
    [[nodiscard]] bool hasWindow(std::string_view name) const;

    // The names loaded so far, in order.
    [[nodiscard]] const std::vector<std::string>& loaded() const { return m_loaded; }

    // What every view of that name holds before the program gets it.
    void prepare(std::string_view name, std::function<void(FakeView&)> content);

    // There is no layout of that name.
    void remove(std::string_view name);

    // The person closed the last window.
    [[nodiscard]] bool hasProgramEnded() const { return m_programEnded; }

private:
    friend class FakeWindow;
    std::shared_ptr<FakeView> makeView(std::string_view name);
    void appeared(FakeWindow& window);
    void disappeared(FakeWindow& window);

    FakeMainQueue& m_mainQueue;
    std::vector<std::pair<std::string, std::weak_ptr<FakeView>>> m_views;
    std::vector<std::pair<std::string, std::weak_ptr<FakeWindow>>> m_windows;
    std::vector<std::string> m_loaded;
    std::map<std::string, std::function<void(FakeView&)>, std::less<>> m_contents;
    std::set<std::string, std::less<>> m_missing;
    // Visible windows, the one shown last at the end.
    std::vector<FakeWindow*> m_visible;
    FakeWindow* m_active = nullptr;
    bool m_programEnded = false;
};

} // namespace vorrano::support
