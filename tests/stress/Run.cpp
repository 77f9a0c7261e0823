#include "stress/Run.h"

#include <algorithm>
#include <iostream>
#include <utility>

#include <sys/ioctl.h>

namespace vorrano::stress {

using serial::SerialPortCallback;

namespace {

constexpr std::size_t kMostUnfinished = 8;
// A reader's round is 100 ms; the rest is for a computer that is busy with 64 of them.
constexpr Milliseconds kReaderHasLeft(400);
constexpr std::chrono::seconds kPatience(60);

constexpr Milliseconds kLongestLimit(100);

Milliseconds limitOf(std::uint32_t draw) { return Milliseconds(20 + draw % 80); }

} // namespace

// Half of them hear everything, the others only what a tab hears.
class Run::Listener : public serial::SerialPortDelegate {
public:
    Listener(Ledger& ledger, bool all)
        : m_ledger(ledger)
        , m_callbacks(all ? serial::SerialPortCallbacks::all()
                          : serial::SerialPortCallbacks{
                                SerialPortCallback::WasRemovedFromSystem, SerialPortCallback::DidReceiveData,
                                SerialPortCallback::DidReceiveResponseToRequest, SerialPortCallback::RequestDidTimeout})
    {}

    [[nodiscard]] serial::SerialPortCallbacks callbacks() const override { return m_callbacks; }
    void serialPortDidReceiveData(serial::SerialPort& /*port*/, const serial::Bytes& data) override
    {
        m_ledger.data(data);
    }
    void serialPortDidReceiveResponseToRequest(serial::SerialPort& /*port*/, const serial::Bytes& response,
                                               const std::shared_ptr<serial::SerialRequest>& request) override
    {
        m_ledger.response(std::any_cast<std::string>(request->userInfo()), response);
    }
    void serialPortRequestDidTimeout(serial::SerialPort& /*port*/,
                                     const std::shared_ptr<serial::SerialRequest>& request) override
    {
        if (request) {
            m_ledger.timeout(std::any_cast<std::string>(request->userInfo()));
        } else {
            m_ledger.timeoutOfNone();
        }
    }

private:
    Ledger& m_ledger;
    const serial::SerialPortCallbacks m_callbacks;
};

Run::Run(const Order& order)
    : m_order(order)
    , m_schedule(scheduleOf(order.seed, order.ports, order.duration))
    , m_lines(order.ports)
{
    for (std::size_t at = 0; at < m_lines.size(); ++at) {
        m_lines[at].ledger = std::make_unique<Ledger>(Device::pathOf(at));
    }
    m_world.terminal.linesOfALineWithout = [count = std::make_shared<std::atomic<unsigned>>(0)] {
        return ++*count % 512 < 256 ? TIOCM_CTS : TIOCM_DSR | TIOCM_CAR;
    };
    m_device = std::make_unique<Device>(
        m_world.devices, order.ports, order.seed,
        [this](std::size_t port, const std::string& id) { m_lines[port].ledger->arrived(id); });
    for (std::size_t at = 0; at < m_lines.size(); ++at) {
        auto& line = m_lines[at];
        line.port = serial::SerialPort::serialPortWithPath(Device::pathOf(at));
        line.listener = std::make_shared<Listener>(*line.ledger, at % 2 == 0);
        line.port->setDelegate(line.listener);
    }
}

Run::~Run() { stopSenders(); }

std::vector<std::string> Run::go()
{
    const auto print = fingerprint(m_schedule);
    std::cout << "seed " << m_order.seed << ", " << m_schedule.size() << " faults, schedule " << std::hex << print
              << std::dec << std::endl;
    for (std::size_t sender = 1; sender <= m_order.senders; ++sender) {
        m_senders.emplace_back([this, sender] { sendUntilTheEnd(sender); });
    }
    runSchedule();
    stopSenders();
    std::vector<std::string> breaches;
    if (!letTheQueuesDrain()) {
        breaches.emplace_back("the queues do not drain");
    }
    const auto stuck = portsThatStandStill();
    breaches.insert(breaches.end(), stuck.begin(), stuck.end());
    for (auto& line : m_lines) {
        if (!line.port->close()) {
            breaches.push_back(line.port->path() + " does not close");
        }
    }
    m_world.loop.drain();
    Tally tally;
    for (auto& line : m_lines) {
        tally += line.ledger->close();
        const auto own = line.ledger->breaches();
        breaches.insert(breaches.end(), own.begin(), own.end());
        const std::weak_ptr<serial::SerialPort> last = std::exchange(line.port, nullptr);
        if (!m_world.loop.runUntil([&] { return last.expired(); })) {
            breaches.push_back("a port is kept by somebody");
        }
    }
    report(tally, print);
    return breaches;
}

// Everything in the order of its time in the schedule, however late the main thread is.
void Run::runSchedule()
{
    auto next = m_schedule.begin();
    m_begin = Clock::now();
    m_world.loop.runUntil(
        [&] {
            while (next != m_schedule.end() && isTime(next->at)) {
                runDue(next->at);
                begin(*next++);
            }
            runDue(m_order.duration);
            keepOpen();
            return isTime(m_order.duration);
        },
        m_order.duration + kPatience);
}

bool Run::isTime(Milliseconds at) const { return m_begin + at <= Clock::now(); }

// What a hang-up or a failed open has left closed is opened again, as soon as it can be.
void Run::keepOpen()
{
    for (const auto& line : m_lines) {
        if (line.shallBeOpen && !line.port->isOpen() && m_world.devices.nodeOfCalloutPath(line.port->path())) {
            line.port->open();
        }
    }
}

void Run::begin(const Step& step)
{
    switch (step.fault) {
    case Fault::CloseAndReopen:
        closeAndReopen(step);
        break;
    case Fault::CloseForLong:
        closeForLong(step);
        break;
    case Fault::HangUp:
        hangUp(step);
        break;
    case Fault::SendFromMain:
        send(0, step.port, step.draw);
        break;
    default:
        applyOption(step);
    }
}

void Run::later(Milliseconds at, std::function<void()> what) { m_due.emplace(at, std::move(what)); }

// What is due by now, and not later than `last` in the schedule.
void Run::runDue(Milliseconds last)
{
    while (!m_due.empty() && m_due.begin()->first <= last && isTime(m_due.begin()->first)) {
        const auto due = m_due.extract(m_due.begin());
        due.mapped()();
    }
}

void Run::hangUp(const Step& step)
{
    ++m_hangUps;
    m_device->hangUp(step.port);
    later(step.at + step.lasts, [this, at = step.port] { m_device->plugAgain(at); });
}

void Run::closeAndReopen(const Step& step)
{
    auto& line = m_lines[step.port];
    line.port->close();
    if (step.lasts == Milliseconds(0)) {
        line.port->open();
        return;
    }
    line.shallBeOpen = false;
    later(step.at + step.lasts, [&line] { line.shallBeOpen = true; });
}

// Once the reader has left and what was queued is done, a closed port tells of no data.
void Run::closeForLong(const Step& step)
{
    auto& line = m_lines[step.port];
    line.shallBeOpen = false;
    line.port->close();
    later(step.at + kReaderHasLeft, [this, &line, closed = Clock::now()] {
        if (Clock::now() - closed >= kReaderHasLeft) {
            m_world.loop.async([&line] { line.ledger->setQuiet(true); });
        }
    });
    later(step.at + step.lasts, [this, &line] {
        m_world.loop.async([&line] { line.ledger->setQuiet(false); });
        line.shallBeOpen = true;
    });
}

void Run::applyOption(const Step& step)
{
    auto& port = *m_lines[step.port].port;
    const auto even = step.draw % 2 == 0;
    if (step.fault == Fault::ChangeBaudRate) {
        port.setBaudRate(std::make_shared<const unsigned long>(even ? 9600UL : 19200UL));
    } else if (step.fault == Fault::ChangeParity) {
        port.setParity(static_cast<serial::SerialParity>(step.draw % 4));
    } else if (step.draw % 3 == 0) {
        port.setUsesDCDOutputFlowControl(!port.usesDCDOutputFlowControl());
    } else {
        port.setUsesDTRDSRFlowControl(!port.usesDTRDSRFlowControl());
    }
}

void Run::send(std::size_t sender, std::size_t at, std::uint32_t draw)
{
    auto& line = m_lines[at];
    auto& ledger = *line.ledger;
    const auto wantsReply = draw % 8 != 0;
    const auto id = ledger.begin(sender, wantsReply);
    const auto limit = limitOf(draw / 8);
    const auto data = wantsReply ? "Q" + id + ":" + std::to_string(limit.count()) + ";" : "N" + id + ";";
    const auto request = serial::SerialRequest::requestWithDataToSendUserInfoTimeoutIntervalResponseEvaluator(
        data, id, limit, [&ledger, id, wantsReply, end = "A" + id + "!"](const serial::Bytes& bytes) {
            const auto answer = !wantsReply || bytes.find(end) != serial::Bytes::npos;
            ledger.evaluated(id, bytes, answer);
            return answer;
        });
    ledger.sent(id, line.port->sendRequest(request));
}

void Run::sendUntilTheEnd(std::size_t sender)
{
    std::mt19937 dice(static_cast<std::uint32_t>(m_order.seed * 1000 + sender));
    for (;;) {
        const auto at = dice() % m_lines.size();
        const auto draw = static_cast<std::uint32_t>(dice());
        if (m_lines[at].ledger->unfinished() < kMostUnfinished) {
            send(sender, at, draw);
        }
        std::unique_lock lock(m_mutex);
        if (m_stopChanged.wait_for(lock, std::chrono::microseconds(draw % 2000), [this] { return m_stop; })) {
            return;
        }
    }
}

void Run::stopSenders()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_stopChanged.notify_all();
    // A sender may wait for its request queue, which may wait for nobody; the main loop is not needed for it.
    for (auto& sender : m_senders) {
        sender.join();
    }
    m_senders.clear();
}

// Every request has its limit, so that nothing is under way any more once two seconds have passed without an end. Those
// that were cleared away never end; that each of them had its reason is checked at the close.
bool Run::letTheQueuesDrain()
{
    // Of looks as well as of time: where the whole computer stood still, nobody had the time to end anything.
    constexpr int kLooks = 1000;
    std::size_t last = 0;
    auto since = Clock::now();
    int looks = 0;
    return m_world.loop.runUntil([&] {
        runDue(Milliseconds::max());
        std::size_t unfinished = 0;
        for (const auto& line : m_lines) {
            unfinished += line.ledger->unfinished();
        }
        if (std::exchange(last, unfinished) != unfinished) {
            since = Clock::now();
            looks = 0;
        }
        return m_due.empty() && ++looks > kLooks && Clock::now() - since > kLongestLimit * 20;
    });
}

// One more request for each port has to come to its end: behind one that is pending for ever it would not.
std::vector<std::string> Run::portsThatStandStill()
{
    std::vector<std::size_t> before;
    for (std::size_t at = 0; at < m_lines.size(); ++at) {
        before.push_back(m_lines[at].ledger->unfinished());
        send(0, at, 0);
    }
    std::vector<std::string> stuck;
    if (!letTheQueuesDrain()) {
        stuck.emplace_back("the queues do not drain at the end");
    }
    for (std::size_t at = 0; at < m_lines.size(); ++at) {
        if (m_lines[at].ledger->unfinished() > before[at]) {
            stuck.push_back(m_lines[at].port->path() + " stands still");
        }
    }
    return stuck;
}

void Run::report(const Tally& tally, std::uint64_t print) const
{
    std::cout << "sent " << tally.sent << ", refused " << tally.refused << ", answered " << tally.answered
              << ", timed out " << tally.timedOut << ", both " << tally.both << ", cleared " << tally.cleared
              << ", time-outs without a request " << tally.timeoutsOfNone << ", chunks " << tally.chunks << ", opens "
              << m_world.terminal.opens << ", closes " << m_world.terminal.closes << ", hang-ups " << m_hangUps
              << ", schedule " << std::hex << print << std::dec << std::endl;
}

} // namespace vorrano::stress
