#pragma once

#include "platform/Subscription.h"

#include <QDialog>
#include <QPointer>

#include <vector>

namespace vorrano::qt {

class QtMainQueue;

// Knows which windows take no input: all of them while an alert or an open panel is up or a pause runs, and the one
// under a sheet. What comes over the accessibility bus is no input event and passes Qt's own modality, so every control
// asks here before it calls its handler.
//
// Threads: the main thread. Lifetime: outlives all windows and whatever it handed out.
class QtGate {
public:
    explicit QtGate(QtMainQueue& queue);

    // Whether what the person does to this widget counts now.
    [[nodiscard]] bool takesInput(const QWidget& widget) const;

    // The window is under a sheet until the result is dropped.
    [[nodiscard]] platform::Subscription block(const QWidget& window);

    // Nothing counts until the result is dropped.
    [[nodiscard]] platform::Subscription shut();

    // Runs the dialog's own loop, with the main queue held back and the dialogs below it disabled; returns at once,
    // without showing it, when the program is ending. Afterwards the dialog may be gone, if the window it belongs to
    // is.
    void runModal(QDialog& dialog);

    // The program is ending: the dialogs on screen end without an answer, and no other is shown.
    void end();
    [[nodiscard]] bool isEnding() const { return m_ending; }

private:
    void enableTopmost(bool enabled);

    QtMainQueue& m_queue;
    std::vector<QPointer<QDialog>> m_dialogs;
    std::vector<const QWidget*> m_blocked;
    int m_shut = 0;
    bool m_ending = false;
};

} // namespace vorrano::qt
