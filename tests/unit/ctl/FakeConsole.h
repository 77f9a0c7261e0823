#pragma once

#include "ctl/Console.h"

#include <string>

namespace vorrano::ctl {

// Keeps what is written.
class FakeConsole final : public Console {
public:
    void output(std::string_view text) override { written += text; }
    void error(std::string_view text) override { errors += text; }
    [[nodiscard]] bool isErrorTerminal() const override { return isTerminal; }

    std::string written;
    std::string errors;
    bool isTerminal = false;
};

} // namespace vorrano::ctl
