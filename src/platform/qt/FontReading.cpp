#include "platform/qt/FontReading.h"

#include <fontconfig/fontconfig.h>

#include <clocale>
#include <system_error>

namespace vorrano::qt {

FontReading::FontReading()
{
    // As Qt does next. The configuration holds numbers: the decimal point must not change while they are read.
    std::setlocale(LC_ALL, "");
    try {
        m_thread = std::thread([] { FcInit(); });
    } catch (const std::system_error&) {
        // Without a thread Qt reads them later.
    }
}

FontReading::~FontReading() { wait(); }

void FontReading::wait()
{
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

} // namespace vorrano::qt
