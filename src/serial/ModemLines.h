#pragma once

#include <atomic>
#include <string_view>

#include <sys/ioctl.h>

namespace vorrano::serial {

// A line that the port drives.
struct OutputLine {
    const int bit;
    std::atomic<bool> isOn = false;
};

// A line that the device drives, as the poll saw it last; `key` is what observers know it by.
struct InputLine {
    const int bit;
    const std::string_view key;
    std::atomic<bool> isOn = false;
};

// The modem lines of a port, by their TIOCM bits. They keep their values while the port is closed.
struct ModemLines {
    OutputLine rts{TIOCM_RTS};
    OutputLine dtr{TIOCM_DTR};
    InputLine cts{TIOCM_CTS, "CTS"};
    InputLine dsr{TIOCM_DSR, "DSR"};
    InputLine dcd{TIOCM_CAR, "DCD"};
};

} // namespace vorrano::serial
