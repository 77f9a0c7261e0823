#pragma once

#include "ctl/ExitStatus.h"
#include "ctl/Outcome.h"
#include "serial/SerialPort.h"

namespace vorrano::ctl {

class Console;

// Writes what became of each device: a line, or a JSON object, on standard output, and the reason of a failure on
// standard error as well. Each text stays on its line. Main thread.
class Report {
public:
    enum class Form {
        // The answer alone.
        Value,
        // The port's path before it.
        LabelledValue,
        Json,
    };

    Report(Console& console, Form form);

    void add(const serial::SerialPort& port, const Outcome& outcome);

    // Of all devices so far: a failed one counts more than one that may not be opened.
    [[nodiscard]] ExitStatus status() const { return m_status; }

private:
    void writeValues(const serial::SerialPort& port, const Outcome& outcome);
    void writeJson(const serial::SerialPort& port, const Outcome& outcome);

    Console& m_console;
    const Form m_form;
    ExitStatus m_status = ExitStatus::Done;
};

} // namespace vorrano::ctl
