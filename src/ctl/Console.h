#pragma once

#include <string_view>

namespace vorrano::ctl {

// Where the program writes: standard output and standard error. Main thread.
class Console {
public:
    Console() = default;
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    virtual ~Console() = default;

    virtual void output(std::string_view text) = 0;
    virtual void error(std::string_view text) = 0;
    // Whether a person watches standard error.
    [[nodiscard]] virtual bool isErrorTerminal() const = 0;
};

} // namespace vorrano::ctl
