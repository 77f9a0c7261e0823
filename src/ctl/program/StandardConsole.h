#pragma once

#include "ctl/Console.h"

#include <system_error>

namespace vorrano::ctl {

// The process's standard streams. What is written is out when the call returns; a failure is remembered.
class StandardConsole final : public Console {
public:
    void output(std::string_view text) override;
    void error(std::string_view text) override;
    [[nodiscard]] bool isErrorTerminal() const override;

    // Why not all output went out: a full disk, or a reader that has gone.
    [[nodiscard]] std::error_code failure() const { return m_failure; }

private:
    std::error_code m_failure;
};

} // namespace vorrano::ctl
