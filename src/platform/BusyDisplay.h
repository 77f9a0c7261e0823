#pragma once

namespace vorrano::platform {

class View;

// Shows that a screen is busy: dims it and lets its spinner turn. A dimmed screen takes input like any other.
//
// Controls: the spinner loginProgressIndicator, which a screen that is never busy need not have.
// Threads: the main thread. Lifetime: the view outlives it.
class BusyDisplay {
public:
    explicit BusyDisplay(View& view);

    void start();
    void stop();

private:
    View& m_view;
};

} // namespace vorrano::platform
