#pragma once

#include "platform/Layouts.h"
#include "platform/qt/QtWindow.h"

#include <functional>
#include <vector>

namespace vorrano::qt {

// Screens from the layouts that are compiled into this library.
//
// Lifetime: made after the application object; outlives all views and windows. `lastClosed` is called when the person
// has closed the last visible window, never because the program closed one.
class QtLayouts final : public platform::Layouts {
public:
    QtLayouts(const QtSurroundings& surroundings, std::function<void()> lastClosed);
    ~QtLayouts() override;

    [[nodiscard]] std::shared_ptr<platform::View> loadView(std::string_view name) override;
    [[nodiscard]] std::shared_ptr<platform::Window> loadWindow(std::string_view name) override;
    [[nodiscard]] std::shared_ptr<platform::Window> keyWindow() override;

    // The key window on screen, or none.
    [[nodiscard]] QWidget* keyWidget() const;

private:
    [[nodiscard]] std::shared_ptr<QtView> load(std::string_view name) const;
    [[nodiscard]] std::shared_ptr<QtWindow> keyQtWindow() const;
    void closedByPerson();

    const QtSurroundings m_surroundings;
    const std::function<void()> m_lastClosed;
    std::vector<std::weak_ptr<QtWindow>> m_windows;
};

} // namespace vorrano::qt
