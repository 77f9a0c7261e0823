#pragma once

#include "platform/Controls.h"

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vorrano::platform {

// A layout, or an outlet of one, that does not exist: a fault of the program, found by a test over all layouts.
class LayoutError : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

// The content of a screen. A control is found by its object name: the name of its outlet, else of its action.
//
// Threads: the main thread. Finding one of another kind, or none, throws LayoutError.
// Lifetime: the controls live as long as the view; dropping the view takes it off the screen.
class View {
public:
    View() = default;
    View(const View&) = delete;
    View& operator=(const View&) = delete;
    virtual ~View() = default;

    [[nodiscard]] virtual Button& button(std::string_view name) = 0;
    [[nodiscard]] virtual TextField& textField(std::string_view name) = 0;
    [[nodiscard]] virtual PopUpButton& popUpButton(std::string_view name) = 0;
    [[nodiscard]] virtual ProgressIndicator& progressIndicator(std::string_view name) = 0;
    [[nodiscard]] virtual Label& label(std::string_view name) = 0;
    [[nodiscard]] virtual TabView& tabView(std::string_view name) = 0;

    // Opacity, 0.0 to 1.0. A dimmed view takes input like any other.
    virtual void setAlpha(double alpha) = 0;
    [[nodiscard]] virtual double alpha() const = 0;
};

// A window of the program's own.
//
// Threads: the main thread.
// Lifetime: dropping the window closes it.
class Window {
public:
    Window() = default;
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    virtual ~Window() = default;

    [[nodiscard]] virtual std::shared_ptr<View> view() = 0;
    virtual void show() = 0;

    // Takes the window off the screen. The program does not end by it, even when no other window is open; it does when
    // the person closes the last one. A sheet over the window ends with 0 first; a sheet that is closed ends with 0.
    virtual void close() = 0;
    [[nodiscard]] virtual bool isVisible() const = 0;

    // Shows `sheet` over this window, which takes no input until the sheet has ended. `completion` gets the return
    // code on the main queue, after the action that ended the sheet has returned. A person who closes the sheet's
    // window ends it with 0.
    virtual void beginSheet(const std::shared_ptr<Window>& sheet, std::function<void(int returnCode)> completion) = 0;

    // Ends the sheet that is over this window and takes it off the screen.
    virtual void endSheet(Window& sheet, int returnCode) = 0;

    // The window that this one is a sheet of, or none.
    [[nodiscard]] virtual Window* sheetParent() = 0;
};

// Makes screens from the layouts by their names.
//
// Threads: the main thread.
class Layouts {
public:
    Layouts() = default;
    Layouts(const Layouts&) = delete;
    Layouts& operator=(const Layouts&) = delete;
    virtual ~Layouts() = default;

    // LayoutError when there is no layout of that name.
    [[nodiscard]] virtual std::shared_ptr<View> loadView(std::string_view name) = 0;

    // The same as the content of a new window, which is not shown yet.
    [[nodiscard]] virtual std::shared_ptr<Window> loadWindow(std::string_view name) = 0;

    // Of the program's own windows (not alerts, not a sheet that has ended) the active one, else the visible one that
    // was shown last, else none.
    [[nodiscard]] virtual std::shared_ptr<Window> keyWindow() = 0;
};

} // namespace vorrano::platform
