#include "stress/Run.h"

#include "stress/Senders.h"

#include <algorithm>
#include <any>
#include <iostream>
#include <thread>
#include <utility>

#include <sys/ioctl.h>

namespace vorrano::stress {

using serial::SerialPortCallback;

namespace {

constexpr std::size_t kMostUnfinished = 8;
constexpr std::chrono::seconds kPatience(60);

constexpr std::uint32_t kKinds = 16; // of which one each wants no reply, or has no response test

// Some response tests take their time, so that steps pile up on the queue.
constexpr Number kSlowOneIn = 16;
constexpr std::chrono::milliseconds kSlow(2);

RequestKind kindOf(std::uint32_t draw)
{
    switch (draw % kKinds) {
    case 0:
        return RequestKind::Untested;
    case 1:
        return RequestKind::AcceptsAll;
    default:
        return RequestKind::WantsReply;
    }
}

Milliseconds limitOf(std::uint32_t draw) { return Milliseconds(20 + draw / kKinds % 80); }

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
        m_ledger.response(numberOf(*request), response);
    }
    void serialPortRequestDidTimeout(serial::SerialPort& /*port*/,
                                     const std::shared_ptr<serial::SerialRequest>& request) override
    {
        m_ledger.timeout(request ? std::optional(numberOf(*request)) : std::nullopt);
        announce({StepKind::FollowUp});
    }

private:
    static Number numberOf(const serial::SerialRequest& request) { return std::any_cast<Number>(request.userInfo()); }

    Ledger& m_ledger;
    const serial::SerialPortCallbacks m_callbacks;
};

Run::Run(const Order& order)
    : m_order(order)
    , m_schedule(scheduleOf(order.seed, order.ports, order.duration))
    , m_lines(order.ports)
    , m_world(order.breaks, order.seed)
{
    for (std::size_t at = 0; at < m_lines.size(); ++at) {
        m_lines[at].ledger = std::make_unique<Ledger>(Device::pathOf(at), m_breaches);
        m_world.watchedTerminal.watch(Device::pathOf(at), *m_lines[at].ledger);
    }
    m_world.terminal.linesOfALineWithout = [count = std::make_shared<std::atomic<unsigned>>(0)] {
        return ++*count % 512 < 256 ? TIOCM_CTS : TIOCM_DSR | TIOCM_CAR;
    };
    m_device = std::make_unique<Device>(
        m_world.devices, order.ports, order.seed,
        [this](std::size_t port, const std::string& id) { m_lines[port].ledger->arrives(id); });
    for (std::size_t at = 0; at < m_lines.size(); ++at) {
        auto& line = m_lines[at];
        m_world.queues.watchNext(*line.ledger);
        line.port = serial::SerialPort::serialPortWithPath(Device::pathOf(at));
        line.listener = std::make_shared<Listener>(*line.ledger, at % 2 == 0);
        line.port->setDelegate(line.listener);
    }
}

std::vector<std::string> Run::go()
{
    const auto print = fingerprint(m_schedule);
    std::cout << "seed " << m_order.seed << ", " << m_schedule.size() << " faults, schedule " << std::hex << print
              << std::dec << std::endl;
    {
        const Senders senders(m_order.senders, m_order.ports, m_order.seed,
                              [this](auto sender, auto port, auto draw) { sendUnlessBusy(sender, port, draw); });
        runSchedule();
    }
    settle();
    sendOnceMore();
    settle();
    closePorts();
    settle();
    drawBalance();
    report(print);
    if (const auto breaches = m_breaches.all(); !breaches.empty()) {
        // What the ports leave undone now tells nothing more.
        letPortsGo();
        return breaches;
    }
    letPortsGo();
    return m_breaches.all();
}

// Everything in the order of its time in the schedule, however late the main thread is; one at a time, so that what
// waits in the main queue is not held up by all that is late.
void Run::runSchedule()
{
    auto next = m_schedule.begin();
    m_begin = Clock::now();
    m_world.loop.runUntil(
        [&] {
            if (next != m_schedule.end() && isTime(next->at)) {
                runDue(next->at);
                begin(*next++);
            } else {
                runDue(m_order.duration);
            }
            keepOpen();
            return isTime(m_order.duration) || !goesOn();
        },
        m_order.duration + kPatience);
}

bool Run::isTime(Milliseconds at) const { return m_begin + at <= Clock::now(); }

// Nothing is wrong so far, and no port stands still with something left to do.
bool Run::goesOn()
{
    if (m_breaches.any()) {
        return false;
    }
    m_rounds.goOn();
    for (auto& line : m_lines) {
        if (line.stillness.lastsAt(line.ledger->events(), m_rounds) && !line.ledger->isSettled()) {
            line.ledger->complain("stands still: " + line.ledger->state());
        }
    }
    return !m_breaches.any();
}

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
    case Fault::CloseForLong:
        closeFor(step);
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

void Run::closeFor(const Step& step)
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

void Run::sendUnlessBusy(std::size_t sender, std::size_t at, std::uint32_t draw)
{
    if (m_lines[at].ledger->unfinished() < kMostUnfinished) {
        send(sender, at, draw);
    }
}

void Run::send(std::size_t sender, std::size_t at, std::uint32_t draw)
{
    auto& line = m_lines[at];
    auto& ledger = *line.ledger;
    const auto kind = kindOf(draw);
    const auto limit = limitOf(draw);
    const auto begun = ledger.begin(sender, kind, limit);
    const auto data = kind == RequestKind::WantsReply ? "Q" + begun.id + ":" + std::to_string(limit.count()) + ";"
                                                      : "N" + begun.id + ";";
    const auto request = serial::SerialRequest::requestWithDataToSendUserInfoTimeoutIntervalResponseEvaluator(
        data, begun.number, begun.limit, testOf(ledger, begun, kind));
    announce({StepKind::Send, begun.number});
    ledger.returned(begun.number, line.port->sendRequest(request));
}

serial::ResponseEvaluator Run::testOf(Ledger& ledger, const Ledger::Begun& begun, RequestKind kind)
{
    if (kind == RequestKind::Untested) {
        return {};
    }
    return [&, number = begun.number, kind, end = "A" + begun.id + "!"](const serial::Bytes& bytes) {
        if (bytes.empty() && m_world.breaker.isTurn(Break::DropEvaluation)) {
            return false;
        }
        const auto answer = kind == RequestKind::AcceptsAll || bytes.find(end) != serial::Bytes::npos;
        ledger.asks(number, bytes, answer);
        if (number % kSlowOneIn == 0) {
            std::this_thread::sleep_for(kSlow);
        }
        return answer;
    };
}

// Every request has its limit, so that everything comes to its end.
void Run::settle()
{
    const auto isSettled = [](const Line& line) { return line.ledger->isSettled(); };
    m_world.loop.runUntil([&] {
        runDue(Milliseconds::max());
        return !goesOn() || (m_due.empty() && std::all_of(m_lines.begin(), m_lines.end(), isSettled));
    });
}

// A request that is still pending, though it should not be, holds up one more.
void Run::sendOnceMore()
{
    for (std::size_t at = 0; at < m_lines.size() && !m_breaches.any(); ++at) {
        send(0, at, 0);
    }
}

void Run::closePorts()
{
    for (auto& line : m_lines) {
        if (!line.port->close()) {
            m_breaches.add(line.port->path() + " does not close");
        }
    }
    if (!m_world.loop.runUntil([&] { return m_world.watchedTerminal.hasNoDescriptor(); })) {
        m_breaches.add("a descriptor of a closed port is kept");
    }
    m_world.loop.drain();
}

// Only of a run that did not end early: else much is still under way.
void Run::drawBalance()
{
    for (auto& line : m_lines) {
        if (!m_breaches.any()) {
            line.ledger->drawBalance();
        }
    }
}

void Run::letPortsGo()
{
    for (auto& line : m_lines) {
        const std::weak_ptr<serial::SerialPort> last = std::exchange(line.port, nullptr);
        if (!m_world.loop.runUntil([&] { return last.expired(); })) {
            m_breaches.add("a port is kept by somebody");
        }
    }
}

void Run::report(std::uint64_t print) const
{
    Tally tally;
    for (const auto& line : m_lines) {
        tally += line.ledger->tally();
    }
    std::cout << "sent " << tally.sent << ", refused " << tally.refused << ", answered " << tally.answered
              << ", timed out " << tally.timedOut << ", both " << tally.both << ", cleared " << tally.cleared
              << ", steps that cleared nothing " << tally.clearedNothing << ", time-outs without a request "
              << tally.timeoutsOfNone << ", chunks " << tally.chunks << ", opens " << m_world.terminal.opens
              << ", closes " << m_world.terminal.closes << ", hang-ups " << m_hangUps << ", schedule " << std::hex
              << print << std::dec << std::endl;
}

} // namespace vorrano::stress
