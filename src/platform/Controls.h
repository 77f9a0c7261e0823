#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorrano::platform {

// The controls of a screen, as the logic sees them.
//
// Threads: the main thread. Handlers are called for what the person does (by pointer, keys, input method or the
// accessibility bus), never for what the program does, and never while a modal alert or panel blocks the control's
// window, nor during a pause. Each control has one handler; setting another replaces it. An exception that leaves a
// handler is written to the system log.
// Lifetime: a control lives as long as its view.
class Control {
public:
    Control() = default;
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;
    virtual ~Control() = default;

    virtual void setEnabled(bool enabled) = 0;
    [[nodiscard]] virtual bool isEnabled() const = 0;
    virtual void setHidden(bool hidden) = 0;
    [[nodiscard]] virtual bool isHidden() const = 0;
};

using Action = std::function<void(Control& sender)>;

class Button : public virtual Control {
public:
    virtual void onPress(Action action) = 0;
};

class TextField : public virtual Control {
public:
    [[nodiscard]] virtual std::string text() const = 0;

    // The program's own change: no handler hears it. The cursor stays behind the same character where it can.
    virtual void setText(const std::string& text) = 0;

    // Hears each change of the text by the person, after it was made.
    virtual void onChange(Action action) = 0;
};

// A pick list with one entry selected, or none when it is empty.
class PopUpButton : public virtual Control {
public:
    virtual void removeAllItems() = 0;

    // Appends entries; a title that the list has already is not added again. The first entry of an empty list
    // becomes the selected one.
    virtual void addItems(const std::vector<std::string>& titles) = 0;

    // Selects the entry of that title; without one the selection stays.
    virtual void selectItem(const std::string& title) = 0;

    [[nodiscard]] virtual std::optional<std::string> titleOfSelectedItem() const = 0;

    // One call for each choice of the person's, also of the entry that is selected already.
    virtual void onChoose(Action action) = 0;
};

// A spinner; hidden at first.
class ProgressIndicator : public virtual Control {
public:
    virtual void startAnimation() = 0;
    virtual void stopAnimation() = 0;
    [[nodiscard]] virtual bool isAnimating() const = 0;
};

// How much of something is done; empty at first.
class ProgressBar : public virtual Control {
public:
    // `done` of `all`, which is 1 or more.
    virtual void setProgress(std::size_t done, std::size_t all) = 0;
};

// A text that the person only reads: the layout's own, until the program sets another.
class Label : public virtual Control {
public:
    virtual void setText(const std::string& text) = 0;

    // Lets a screen reader read the text out. Only for a label on the screen that the layout marks as announced. When
    // such a label appears, it is read out without this call.
    virtual void announce() = 0;
};

class View;

// Pages behind labels. The labels are the layout's own texts, without any mnemonic.
class TabView : public virtual Control {
public:
    [[nodiscard]] virtual int count() const = 0;
    [[nodiscard]] virtual int selectedIndex() const = 0;
    [[nodiscard]] virtual std::string selectedLabel() const = 0;

    // Makes the view the content of the page; what was there is let go. Calls no handler.
    virtual void setView(int index, std::shared_ptr<View> view) = 0;

    // One call for each choice of a tab, whatever its source, also of the tab that is on screen already.
    virtual void onSelect(std::function<void()> told) = 0;
};

} // namespace vorrano::platform
