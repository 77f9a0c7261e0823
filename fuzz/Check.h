#pragma once

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace vorrano::fuzz {

// What must hold for every input. Where it does not, the program ends, and the input is kept.
inline void check(bool holds, std::string_view what)
{
    if (!holds) {
        std::fprintf(stderr, "does not hold: %.*s\n", static_cast<int>(what.size()), what.data());
        std::abort();
    }
}

} // namespace vorrano::fuzz
