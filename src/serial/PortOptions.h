#pragma once

#include "platform/Mutex.h"

#include <cstdint>
#include <memory>
#include <utility>

#include <termios.h>

namespace vorrano::serial {

// Any other value that is set counts as SerialParityNone.
enum SerialParity : std::uint64_t { SerialParityNone = 0, SerialParityOdd = 1, SerialParityEven = 2 };

// Flow control by DTR, DSR and DCD has no flags on Linux: asking for it is kept and changes no setting.
inline constexpr tcflag_t kCdtrIflow = 0;
inline constexpr tcflag_t kCdsrOflow = 0;
inline constexpr tcflag_t kCcarOflow = 0;
// Both directions of RTS/CTS are one flag here.
inline constexpr tcflag_t kCctsOflowCrtsIflow = CRTSCTS;

// How a port sets up its line. The options stay with the port, also while it is closed.
//
// Threads: every method on any.
class PortOptions {
public:
    struct Values {
        // Null counts as 0.
        std::shared_ptr<const unsigned long> baudRate = nullptr;
        std::uint64_t numberOfStopBits = 1;
        SerialParity parity = SerialParityNone;
        bool shouldEchoReceivedData = false;
        bool usesRTSCTSFlowControl = false;
        bool usesDTRDSRFlowControl = false;
        bool usesDCDOutputFlowControl = false;
    };

    [[nodiscard]] Values values() const
    {
        const platform::MutexLock lock(m_mutex);
        return m_values;
    }

    template <class Value>
    [[nodiscard]] Value get(Value Values::*option) const
    {
        return values().*option;
    }

    // Stores the value; returns whether it differs from the one before. Rates are compared by their object's identity.
    template <class Value>
    bool set(Value Values::*option, Value value)
    {
        const platform::MutexLock lock(m_mutex);
        std::swap(m_values.*option, value);
        return m_values.*option != value;
    }

private:
    mutable platform::Mutex m_mutex;
    Values m_values VORRANO_GUARDED_BY(m_mutex);
};

// Writes the options, all but the rate, into a terminal's settings: raw bytes of eight bits, a read that returns once
// one byte is there.
void writeOptions(const PortOptions::Values& options, termios& settings);

// Takes flow control out, so that nothing that waits for the other side can hold up a change of the settings.
void clearFlowControl(termios& settings);

} // namespace vorrano::serial
