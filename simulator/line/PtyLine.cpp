#include "simulator/line/PtyLine.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace vorrano::simulator {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kLook{1};
constexpr milliseconds kLostAfter{1000};

[[noreturn]] void fail(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

struct Rate {
    speed_t code;
    unsigned baud;
};
constexpr std::array kRates{Rate{B9600, 9600},   Rate{B19200, 19200},   Rate{B38400, 38400},
                            Rate{B57600, 57600}, Rate{B115200, 115200}, Rate{B230400, 230400}};

} // namespace

PtyLine::PtyLine(Listener listener)
    : m_listener(std::move(listener))
{
    m_pump.setSingleShot(true);
    m_pump.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_pump, &QTimer::timeout, &m_pump, [this] { pump(); });
}

PtyLine::~PtyLine()
{
    // There may be no event loop any more to delete it later.
    m_notifier.reset();
    unplug();
}

Moment PtyLine::now() { return std::chrono::steady_clock::now().time_since_epoch(); }

void PtyLine::plug()
{
    if (isPlugged()) {
        return;
    }
    m_master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    std::array<char, 128> name{};
    if (m_master < 0 || grantpt(m_master) != 0 || unlockpt(m_master) != 0 ||
        ptsname_r(m_master, name.data(), name.size()) != 0) {
        fail("pseudo-terminal");
    }
    m_node = name.data();
    m_slave = ::open(m_node.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    termios settings{};
    if (m_slave < 0 || tcgetattr(m_slave, &settings) != 0) {
        fail("pseudo-terminal");
    }
    cfmakeraw(&settings);
    tcsetattr(m_slave, TCSANOW, &settings);
    m_notifier = std::make_unique<QSocketNotifier>(m_master, QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] { readyToRead(); });
}

void PtyLine::unplug()
{
    m_pump.stop();
    m_pieces.clear();
    m_written.reset();
    if (m_notifier) {
        m_notifier->setEnabled(false);
        // It may be the one that is calling.
        m_notifier.release()->deleteLater();
    }
    for (int* descriptor : {&m_slave, &m_master}) {
        if (*descriptor >= 0) {
            ::close(*descriptor);
            *descriptor = -1;
        }
    }
    m_node.clear();
}

unsigned PtyLine::baud() const
{
    termios settings{};
    if (m_slave < 0 || tcgetattr(m_slave, &settings) != 0) {
        return 0;
    }
    const auto code = cfgetospeed(&settings);
    const auto* rate = std::find_if(kRates.begin(), kRates.end(), [code](const Rate& r) { return r.code == code; });
    return rate == kRates.end() ? 0 : rate->baud;
}

void PtyLine::readyToRead()
{
    std::array<char, 4096> buffer{};
    const auto count = ::read(m_master, buffer.data(), buffer.size());
    if (count > 0) {
        m_listener.received(std::string(buffer.data(), static_cast<std::size_t>(count)));
    }
}

void PtyLine::send(const std::vector<Piece>& pieces)
{
    if (!isPlugged()) {
        return;
    }
    m_pieces.insert(m_pieces.end(), pieces.begin(), pieces.end());
    pump();
}

bool PtyLine::lastPieceWasRead()
{
    if (!m_written) {
        return true;
    }
    // Polling brings those bytes to the reader's side that are still on their way through the kernel.
    pollfd reader{m_slave, POLLIN, 0};
    ::poll(&reader, 1, 0);
    int unread = 0;
    ioctl(m_slave, FIONREAD, &unread);
    if (unread > 0 && now() - *m_written < kLostAfter) {
        return false;
    }
    if (unread > 0) {
        tcflush(m_slave, TCIFLUSH);
    }
    m_written.reset();
    return true;
}

void PtyLine::pump()
{
    while (isPlugged() && (!m_pieces.empty() || m_written)) {
        if (!lastPieceWasRead()) {
            m_pump.start(kLook);
            return;
        }
        if (m_pieces.empty()) {
            return;
        }
        const auto wait = std::chrono::ceil<milliseconds>(m_pieces.front().due - now());
        if (wait > milliseconds::zero()) {
            m_pump.start(wait);
            return;
        }
        const Piece piece = m_pieces.front();
        m_pieces.pop_front();
        write(piece);
    }
}

void PtyLine::write(const Piece& piece)
{
    if (!piece.bytes.empty() && ::write(m_master, piece.bytes.data(), piece.bytes.size()) > 0) {
        m_written = now();
        m_listener.sent(piece.bytes);
    }
    if (piece.hangUpAfter) {
        m_listener.hangUp();
    }
}

} // namespace vorrano::simulator
