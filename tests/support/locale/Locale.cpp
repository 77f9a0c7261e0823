#include <clocale>

// A test program speaks the locale of its environment, as every Qt program does: what must not hang on the locale is
// seen not to.
[[maybe_unused]] static const char* const s_locale = std::setlocale(LC_ALL, "");
