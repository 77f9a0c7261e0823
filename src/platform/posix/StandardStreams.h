#pragma once

namespace vorrano::posix_platform {

// Opens /dev/null in the place of each standard stream that the caller of the program closed. The serial layer takes
// descriptor 0 for "closed", so no port may get such a number. For a program's main, before anything is opened.
void occupyStandardStreams();

} // namespace vorrano::posix_platform
