#include "ctl/Report.h"

#include "ctl/Arguments.h"
#include "ctl/Console.h"
#include "ctl/Json.h"
#include "ctl/PortChoice.h"
#include "text/EscapedLine.h"

#include <string>

namespace vorrano::ctl {

namespace {

std::string textOf(const Outcome::Value& value)
{
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
        return std::to_string(*number);
    }
    return text::escapedLine(std::get<std::string>(value));
}

// Of several values each has its name.
std::string lineOf(const Outcome& outcome)
{
    const bool areSeveral = outcome.values.size() > 1;
    std::string line;
    for (const auto& [name, value] : outcome.values) {
        line += (line.empty() && &value == &outcome.values.front().second ? "" : ", ");
        line += (areSeveral ? name + ": " : "") + textOf(value);
    }
    return line;
}

} // namespace

Report::Report(Console& console, Form form)
    : m_console(console)
    , m_form(form)
{}

void Report::add(const serial::SerialPort& port, const Outcome& outcome)
{
    if (m_form == Form::Json) {
        writeJson(port, outcome);
    } else if (!outcome.failure) {
        writeValues(port, outcome);
    }
    if (outcome.failure) {
        m_console.error(std::string(kProgramName) + ": " + port.path() + ": " +
                        text::escapedLine(outcome.failure->why) + "\n");
        if (m_status != ExitStatus::DeviceFailed) {
            m_status = outcome.failure->status;
        }
    }
}

void Report::writeValues(const serial::SerialPort& port, const Outcome& outcome)
{
    const auto label = m_form == Form::LabelledValue ? port.path() + ": " : std::string();
    m_console.output(label + lineOf(outcome) + "\n");
}

void Report::writeJson(const serial::SerialPort& port, const Outcome& outcome)
{
    Json record{{"port", port.path()}, {"node", nodeOf(port)}, {"ok", !outcome.failure}};
    auto& values = record["values"] = Json::object();
    for (const auto& [name, value] : outcome.values) {
        std::visit([&, &key = name](const auto& held) { values[key] = held; }, value);
    }
    if (outcome.failure) {
        record["error"] = outcome.failure->why;
    }
    m_console.output(lineOf(record));
}

} // namespace vorrano::ctl
