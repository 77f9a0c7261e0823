#pragma once

#include "platform/NotificationCentre.h"
#include "platform/qt/QtAlerts.h"
#include "platform/qt/QtGate.h"
#include "platform/qt/QtLayouts.h"
#include "platform/qt/QtMainLoop.h"
#include "platform/qt/QtOpenPanel.h"
#include "platform/qt/QtPause.h"
#include "platform/qtcore/QtMainQueue.h"
#include "support/FakeSystem.h"

#include <QDialog>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace vorrano::support {

inline constexpr const char* kSetup = "SetupMenuViewController";
inline const platform::Alert kNotice{"Success", {"OK"}, "It is done", platform::AlertStyle::Informational};

// The Qt adapters composed as a program composes them, on Qt's offscreen platform.
class QtProgram : public ::testing::Test {
protected:
    QtProgram();

    // Runs the event loop until the condition holds; false when it does not in time.
    static bool spinUntil(const std::function<bool()>& condition);

    // Runs the event loop until the main queue has run what it may run now.
    void runQueue();

    // Runs `act` once an alert or a panel is on screen, inside its loop. One that is still up afterwards is for the
    // test to end.
    void whileUp(std::function<void(QDialog& box)> act);

    // The window of a layout, shown.
    std::shared_ptr<platform::Window> shown(std::string_view layout);

    // The widget behind a control.
    template <class Widget>
    static Widget& widget(platform::View& view, const char* name)
    {
        auto* const found = dynamic_cast<Widget*>(find(view, name));
        if (found == nullptr) {
            throw platform::LayoutError(std::string("no widget ") + name);
        }
        return *found;
    }
    static QWidget& frame(platform::Window& window);

    // As a screen reader would: press a button, write a text.
    static void pressOverTheBus(QWidget& button);
    static void writeOverTheBus(QWidget& field, const QString& text);

    FakeSystemLog log;
    platform::NotificationCentre centre;
    qt::QtMainQueue queue{log};
    qt::QtGate gate{queue};
    qt::QtMainLoop loop{queue, gate, centre, log};
    int timesLastClosed = 0;
    qt::QtLayouts layouts;
    qt::QtAlerts alerts{gate, layouts};
    qt::QtOpenPanel openPanel{gate, layouts};
    qt::QtPause pause{queue, gate};

private:
    static QWidget* find(platform::View& view, const char* name);
};

// The log of the application object, which all tests of a process share.
FakeSystemLog& applicationLog();

} // namespace vorrano::support
