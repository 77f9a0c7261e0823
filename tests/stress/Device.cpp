#include "stress/Device.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <system_error>
#include <utility>

#include <sys/epoll.h>
#include <unistd.h>

namespace vorrano::stress {

namespace {

constexpr int kLookMilliseconds = 1;
constexpr std::string_view kGarbage = "\r\n?garbage\x80\xff A0.0 ";

} // namespace

Device::Device(pty_rig::PtyDevices& devices, std::size_t ports, std::uint64_t seed, Heard heard)
    : m_devices(devices)
    , m_seed(seed)
    , m_heard(std::move(heard))
    , m_epoll(::epoll_create1(EPOLL_CLOEXEC))
    , m_lines(ports)
{
    if (m_epoll < 0) {
        throw std::system_error(errno, std::generic_category(), "epoll_create1");
    }
    for (std::size_t port = 0; port < ports; ++port) {
        plug(port);
    }
    m_thread = std::thread([this] { run(); });
}

Device::~Device()
{
    m_ended = true;
    m_thread.join();
    ::close(m_epoll);
}

std::string Device::pathOf(std::size_t port) { return "/dev/cu.usbserial-" + std::to_string(port); }

void Device::hangUp(std::size_t port)
{
    const std::lock_guard lock(m_mutex);
    m_devices.remove(pathOf(port));
    m_lines[port].pty.reset();
    m_lines[port].received.clear();
}

void Device::plugAgain(std::size_t port)
{
    const std::lock_guard lock(m_mutex);
    plug(port);
}

void Device::plug(std::size_t port)
{
    auto& pty = m_lines[port].pty;
    pty = std::make_unique<pty_rig::Pty>();
    // By edges: a line that nobody has open is readable all the time.
    epoll_event event{};
    event.events = EPOLLIN | EPOLLET;
    event.data.u64 = port;
    ::epoll_ctl(m_epoll, EPOLL_CTL_ADD, pty->master(), &event);
    m_devices.set(pathOf(port), pty->node());
}

void Device::run()
{
    while (!m_ended) {
        const auto ready = readyLines();
        const std::lock_guard lock(m_mutex);
        for (const auto port : ready) {
            read(port);
        }
        sendDue();
    }
}

std::vector<std::size_t> Device::readyLines() const
{
    std::array<epoll_event, 64> events{};
    const auto count = ::epoll_wait(m_epoll, events.data(), static_cast<int>(events.size()), kLookMilliseconds);
    std::vector<std::size_t> ready;
    for (int at = 0; at < count; ++at) {
        // By value: an epoll_event is packed, and what is in it not aligned.
        const std::size_t port = events[static_cast<std::size_t>(at)].data.u64;
        ready.push_back(port);
    }
    return ready;
}

void Device::read(std::size_t port)
{
    auto& line = m_lines[port];
    if (!line.pty) {
        return;
    }
    line.received += line.pty->receive();
    for (auto end = line.received.find(';'); end != std::string::npos; end = line.received.find(';')) {
        take(port, line.received.substr(0, end));
        line.received.erase(0, end + 1);
    }
}

// What comes before the letter is an echo of a line that was not set up yet, or the rest of an earlier open.
void Device::take(std::size_t port, const std::string& request)
{
    const auto begin = request.find_last_of("QN");
    if (begin == std::string::npos) {
        return;
    }
    const auto colon = request.find(':', begin);
    if (request[begin] == 'N') {
        m_heard(port, request.substr(begin + 1));
    } else if (colon != std::string::npos) {
        int limit = 0;
        std::from_chars(request.data() + colon + 1, request.data() + request.size(), limit);
        const auto id = request.substr(begin + 1, colon - begin - 1);
        m_heard(port, id);
        answer(port, id, Milliseconds(limit));
    }
}

void Device::answer(std::size_t port, const std::string& id, Milliseconds limit)
{
    const auto reply = "A" + id + "!";
    const auto answer = answerTo(m_seed, port, id, reply.size(), limit);
    if (answer.silent) {
        return;
    }
    auto when = Clock::now() + answer.delay;
    if (answer.garbageBefore) {
        m_pieces.emplace(when, Piece{port, std::string(kGarbage)});
    }
    std::size_t from = 0;
    for (std::size_t cut = 0; cut < answer.cuts.size(); ++cut) {
        m_pieces.emplace(when, Piece{port, reply.substr(from, answer.cuts[cut] - from)});
        from = answer.cuts[cut];
        when += answer.gaps[cut];
    }
    m_pieces.emplace(when, Piece{port, reply.substr(from)});
}

void Device::sendDue()
{
    while (!m_pieces.empty() && m_pieces.begin()->first <= Clock::now()) {
        const auto piece = m_pieces.extract(m_pieces.begin());
        const auto& line = m_lines[piece.mapped().port];
        if (line.pty) {
            line.pty->send(piece.mapped().bytes);
        }
    }
}

} // namespace vorrano::stress
