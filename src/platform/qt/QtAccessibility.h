#pragma once

#include <QString>

namespace vorrano::qt {

// Says what the program's own widgets are to the accessibility bus: the spinner, and the tabs, whose press counts also
// on the tab that is on screen; and lets the bus hear where the focus is. Main thread; a second call changes nothing.
void installAccessibility();

// The label as a person reads it: a single "&" marks a mnemonic, "&&" is a "&".
[[nodiscard]] QString withoutMnemonic(const QString& label);

} // namespace vorrano::qt
