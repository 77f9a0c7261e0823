#pragma once

#include <thread>

namespace vorrano::qt {

// Reads the configuration of the computer's fonts on a thread of its own. Qt does it on the main thread when the first
// text is laid out, where it takes a third of the start; now it is done while Qt connects to the display. What Qt asks
// for meanwhile, as a theme may, is right nevertheless: it is read twice then.
//
// Threads: made, waited for and destroyed on the main thread. Lifetime: from before the application object until the
// first text.
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
