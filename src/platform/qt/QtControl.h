#pragma once

#include "platform/Controls.h"
#include "platform/Guarded.h"
#include "platform/qt/QtGate.h"

#include <QObject>
#include <QWidget>

namespace vorrano::platform {
class MainQueue;
}

namespace vorrano::qt {

// What every control needs of its surroundings; all of it outlives the controls.
struct QtSurroundings {
    QtGate& gate;
    platform::MainQueue& mainQueue;
    platform::SystemLog& log;
};

// What all controls have in common. `Interface` is the control as the logic sees it, `Widget` what it is on screen.
//
// Lifetime: the widget outlives the control. Connections to it hang on context(), so that a widget that is being
// destroyed calls no handler.
template <class Interface, class Widget>
class QtControl : public Interface {
public:
    QtControl(Widget& widget, const QtSurroundings& surroundings)
        : m_widget(widget)
        , m_surroundings(surroundings)
    {}

    void setEnabled(bool enabled) override { m_widget.setEnabled(enabled); }
    // Its own state: a control in a disabled window is as enabled as it was.
    [[nodiscard]] bool isEnabled() const override { return m_widget.isEnabledTo(m_widget.parentWidget()); }
    void setHidden(bool hidden) override { m_widget.setHidden(hidden); }
    [[nodiscard]] bool isHidden() const override { return m_widget.isHidden(); }

protected:
    [[nodiscard]] Widget& widget() const { return m_widget; }
    [[nodiscard]] const QtSurroundings& surroundings() const { return m_surroundings; }
    [[nodiscard]] const QObject* context() const { return &m_context; }

    // Whether what the person does to the control counts now.
    [[nodiscard]] bool takesInput() const { return m_surroundings.gate.takesInput(m_widget) && m_widget.isEnabled(); }

    // Calls the handler; the control may be gone when it returns.
    void deliver(const platform::Action& action)
    {
        if (const platform::Action told = action) {
            platform::guarded(m_surroundings.log, [&] { told(*this); });
        }
    }

private:
    Widget& m_widget;
    const QtSurroundings m_surroundings;
    QObject m_context;
};

} // namespace vorrano::qt
