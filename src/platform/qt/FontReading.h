#pragma once

#include <thread>

namespace vorrano::qt {

// Reads the configuration of the computer's fonts on a thread of its own, while Qt connects to the display. Otherwise
// Qt reads it on the main thread when it lays out the first text, which takes a third of the start. If Qt needs it
// earlier, as for some themes, Qt reads it itself; the result is the same.
//
// The reading looks into the environment. What Qt and the C library do there meanwhile, removing a variable, leaves
// every other one in memory, so that nothing worse can come of it than a variable that is not found.
//
// Threads: made, waited for and destroyed on the main thread. Lifetime: made before the application object; wait()
// comes before the first text.
class FontReading {
public:
    FontReading();
    FontReading(const FontReading&) = delete;
    FontReading& operator=(const FontReading&) = delete;
    ~FontReading();

    void wait();

private:
    std::thread m_thread;
};

} // namespace vorrano::qt
