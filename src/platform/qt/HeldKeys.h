#pragma once

#include <QtGlobal>

class QEvent;
class QKeyEvent;
class QObject;

namespace vorrano::qt {

// Keeps a key that is held down from acting more than once, and from acting in a window, sheet or alert that came up
// while it was held. The first event of a press acts. The repetitions that follow go on typing and moving (letters,
// arrows, Tab, Backspace), but they press no button, answer and close nothing, open no list, choose no tab with
// Ctrl+Tab (each choice builds a screen) and trigger no shortcut.
//
// Nothing is remembered of the keys that are down, so a release that went to another application leaves no key dead.
// Threads: the main thread. Lifetime: the application object's.
class HeldKeys {
public:
    // Whether the event would let a repetition act. The application then must not deliver it. Asked of every event,
    // before any event filter sees it: a filter of Qt's accessibility, which asks a screen reader first, passes copies
    // of the keys on later, without their times.
    [[nodiscard]] bool holdsBack(const QObject& receiver, const QEvent& event);

private:
    [[nodiscard]] bool isRepetition(const QKeyEvent& press) const;

    // The scan code of the last key that Qt took for released, and when that was. 0: what was released was no key of a
    // keyboard.
    quint32 m_releasedKey = 0;
    quint64 m_releasedAt = 0;
    // Whether the last press was a repetition. The shortcut that it triggers, if any, follows at once.
    bool m_repeats = false;
};

} // namespace vorrano::qt
