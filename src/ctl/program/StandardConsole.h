#pragma once

#include "ctl/Console.h"

namespace vorrano::ctl {

// The process's standard streams. What is written is out when the call returns; a failure is remembered.
class StandardConsole final : public Console {
public:
    void output(std::string_view text) override;
    void error(std::string_view text) override;
    [[nodiscard]] bool isErrorTerminal() const override;

    // Whether all output went out: it may not on a full disk, or when its reader has gone.
    [[nodiscard]] bool isWhole() const { return m_isWhole; }

private:
    bool m_isWhole = true;
};

} // namespace vorrano::ctl
