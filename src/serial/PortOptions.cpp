#include "serial/PortOptions.h"

namespace vorrano::serial {

namespace {

constexpr cc_t kLeastBytesOfARead = 1;
constexpr cc_t kTenthsBetweenBytes = 2;

void setFlags(tcflag_t& word, tcflag_t flags, bool on) { word = on ? word | flags : word & ~flags; }

void writeParity(SerialParity parity, termios& settings)
{
    setFlags(settings.c_cflag, PARENB, parity != SerialParityNone);
    // Without parity PARODD stays as it is.
    if (parity != SerialParityNone) {
        setFlags(settings.c_cflag, PARODD, parity == SerialParityOdd);
    }
}

} // namespace

void writeOptions(const PortOptions::Values& options, termios& settings)
{
    ::cfmakeraw(&settings);
    settings.c_cc[VMIN] = kLeastBytesOfARead;
    settings.c_cc[VTIME] = kTenthsBetweenBytes;
    settings.c_cflag |= CS8;
    writeParity(options.parity, settings);
    setFlags(settings.c_cflag, CSTOPB, options.numberOfStopBits >= 2);
    setFlags(settings.c_lflag, ECHO, options.shouldEchoReceivedData);
    setFlags(settings.c_cflag, kCctsOflowCrtsIflow, options.usesRTSCTSFlowControl);
    setFlags(settings.c_cflag, kCdtrIflow | kCdsrOflow, options.usesDTRDSRFlowControl);
    setFlags(settings.c_cflag, kCcarOflow, options.usesDCDOutputFlowControl);
    settings.c_cflag |= CREAD | CLOCAL | HUPCL;
    settings.c_lflag &= ~static_cast<tcflag_t>(ICANON | ISIG);
}

void clearFlowControl(termios& settings)
{
    setFlags(settings.c_cflag, kCctsOflowCrtsIflow | kCdtrIflow | kCdsrOflow | kCcarOflow, false);
}

} // namespace vorrano::serial
