#pragma once

namespace vorrano::ctl {

// What the program's exit status says.
enum class ExitStatus {
    Done = 0,
    DeviceFailed = 1,
    Refused = 2,
    NoVorrano = 3,
    NotAllowed = 4,
};

} // namespace vorrano::ctl
