#pragma once

#include "ctl/Task.h"

namespace vorrano::ctl {

// Reads a secret from a file, from standard input, or from the person at the terminal, to whom it is not shown.
[[nodiscard]] Secret readSecret(const SecretSource& source);

} // namespace vorrano::ctl
