#include <clocale>
#include <cstdio>
#include <cstdlib>

// A test program speaks the locale of its environment, as every Qt program does: what must not hang on the locale is
// seen not to. One that is not installed would let everything pass.
[[maybe_unused]] static const bool s_hasLocale = [] {
    if (std::setlocale(LC_ALL, "") == nullptr) {
        std::fputs("The locale of the environment is not installed.\n", stderr);
        std::exit(1);
    }
    return true;
}();
