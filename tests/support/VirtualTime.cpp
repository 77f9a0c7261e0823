#include "support/VirtualTime.h"

#include "platform/Guarded.h"

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace vorrano::support {

using namespace std::chrono_literals;

namespace {

// A program that takes more steps than this without any time passing, or lets the main thread wait longer than that on
// the virtual clock, will not come to rest.
constexpr std::size_t kMostStepsAtOneTime = 200'000;
constexpr Nanoseconds kLongestWaitOfMain = 1h;

class Counted {
public:
    explicit Counted(int& count)
        : m_count(count)
    {
        ++m_count;
    }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() { --m_count; }

private:
    int& m_count;
};

[[noreturn]] void fail(const std::string& what)
{
    ADD_FAILURE() << what;
    throw std::logic_error(what);
}

} // namespace

VirtualTime::VirtualTime(platform::SystemLog& log)
    : m_log(log)
{}

VirtualTime::~VirtualTime() { end(); }

void VirtualTime::run()
{
    if (!isMainThread()) {
        fail("time is the main thread's to move");
    }
    while (step()) {
    }
}

void VirtualTime::advance(Nanoseconds duration)
{
    const auto target = m_now + duration;
    run();
    for (auto due = nextDue(); due && *due <= target; due = nextDue()) {
        moveTo(*due);
        run();
    }
    moveTo(target);
    run();
}

void VirtualTime::explore(std::uint32_t seed) { m_dice.emplace(seed); }

std::size_t VirtualTime::backgroundTasks() const
{
    const auto busy = [](const auto& thread) { return thread->isBusy(); };
    return static_cast<std::size_t>(std::count_if(m_threads.begin(), m_threads.end(), busy));
}

void VirtualTime::end()
{
    m_ended = true;
    // Taken out first: what goes with them may submit and forget.
    const auto mainTasks = std::exchange(m_mainTasks, {});
    const auto urgent = std::exchange(m_urgent, {});
    const auto events = std::exchange(m_events, {});
    m_dueOfEvent.clear();
    m_ready.clear();
    m_parked.clear();
    unwindThreads();
    while (!m_endTasks->empty()) {
        const auto task = m_endTasks->extract(m_endTasks->begin());
        task.mapped()();
    }
}

void VirtualTime::unwindThreads()
{
    for (const auto& thread : m_threads) {
        if (thread->isFresh()) {
            thread->withdraw();
        }
    }
    while (backgroundTasks() > 0) {
        for (const auto& thread : m_threads) {
            if (thread->isBusy()) {
                thread->resume();
            }
        }
    }
    m_threads.clear();
}

platform::Subscription VirtualTime::whenEnded(Task task)
{
    const auto id = ++m_order;
    m_endTasks->emplace(id, std::move(task));
    return platform::Subscription([tasks = std::weak_ptr(m_endTasks), id] {
        if (const auto alive = tasks.lock()) {
            alive->erase(id);
        }
    });
}

void VirtualTime::runInBackground(Task task)
{
    if (m_ended) {
        return;
    }
    const auto idle = [](const auto& thread) { return !thread->isBusy(); };
    auto free = std::find_if(m_threads.begin(), m_threads.end(), idle);
    if (free == m_threads.end()) {
        m_threads.push_back(std::make_unique<BackgroundThread>([this](const Task& given) {
            try {
                runGuarded(given);
            } catch (const Unwound&) {
                // The world has ended, and so does the task.
            }
        }));
        free = m_threads.end() - 1;
    }
    (*free)->assign(std::move(task));
    m_ready.push_back({++m_order, free->get()});
}

void VirtualTime::runOnMain(Task task)
{
    if (!hasMainEnded()) {
        m_mainTasks.push_back({++m_order, std::move(task)});
    }
}

void VirtualTime::runOnMainAtOnce(Task task)
{
    if (!hasMainEnded()) {
        m_urgent.push_back(std::move(task));
    }
}

platform::Subscription VirtualTime::holdMain()
{
    ++*m_holds;
    return platform::Subscription([holds = m_holds] { --*holds; });
}

void VirtualTime::endMain()
{
    m_mainEnded = true;
    const auto mainTasks = std::exchange(m_mainTasks, {});
    const auto urgent = std::exchange(m_urgent, {});
}

std::uint64_t VirtualTime::at(Nanoseconds due, Task task)
{
    if (m_ended) {
        return 0;
    }
    const auto event = ++m_order;
    m_events.emplace(std::pair(due, event), std::move(task));
    m_dueOfEvent.emplace(event, due);
    return event;
}

void VirtualTime::forget(std::uint64_t event)
{
    const auto known = m_dueOfEvent.find(event);
    if (known == m_dueOfEvent.end()) {
        return;
    }
    const auto taken = m_events.extract({known->second, event});
    m_dueOfEvent.erase(known);
}

VirtualTime::Wait VirtualTime::waitUntil(const Condition& met, std::optional<Nanoseconds> deadline)
{
    if (isMainThread()) {
        return waitOnMain(met, deadline);
    }
    auto* const thread = BackgroundThread::current();
    if (thread == nullptr) {
        fail("a thread that is none of this world's waits");
    }
    while (!m_ended) {
        if (met()) {
            return Wait::Met;
        }
        if (deadline && m_now >= *deadline) {
            return Wait::TimedOut;
        }
        m_parked.push_back({thread, &met, deadline});
        thread->park();
    }
    return Wait::Ended;
}

VirtualTime::Wait VirtualTime::waitOnMain(const Condition& met, std::optional<Nanoseconds> deadline)
{
    const Counted waits(m_mainWaits);
    const auto patience = m_now + kLongestWaitOfMain;
    while (!m_ended) {
        if (met()) {
            return Wait::Met;
        }
        if (deadline && m_now >= *deadline) {
            return Wait::TimedOut;
        }
        if (step()) {
            continue;
        }
        auto next = nextDue();
        if (deadline && (!next || *next > *deadline)) {
            next = deadline;
        }
        if (!next || (!deadline && *next > patience)) {
            fail("the main thread waits for what can't happen");
        }
        moveTo(*next);
    }
    return Wait::Ended;
}

void VirtualTime::giveWay()
{
    auto* const thread = BackgroundThread::current();
    if (thread == nullptr) {
        return;
    }
    m_ready.push_back({++m_order, thread});
    thread->park();
}

void VirtualTime::crossing()
{
    if (!m_dice || m_ended) {
        return;
    }
    if (!isMainThread()) {
        if ((*m_dice)() % 2 == 0) {
            giveWay();
        }
        return;
    }
    const Counted waits(m_mainWaits);
    while ((*m_dice)() % 2 == 0 && step()) {
    }
}

void VirtualTime::runGuarded(const Task& task) const
{
    try {
        task();
    } catch (const Unwound&) {
        throw;
    } catch (const std::exception& exception) {
        platform::logUncaught(m_log, exception.what());
    } catch (...) {
        platform::logUncaught(m_log, "not a std::exception");
    }
}

bool VirtualTime::step()
{
    if (m_ended) {
        return false;
    }
    if (++m_stepsAtThisTime > kMostStepsAtOneTime) {
        fail("the program does not come to rest");
    }
    if (fireEvent()) {
        return true;
    }
    wakeParked();
    if (!m_urgent.empty() && m_mainWaits == 0) {
        const auto task = std::move(m_urgent.front());
        m_urgent.pop_front();
        runGuarded(task);
        return true;
    }
    const std::size_t mainTasks = mayRunMain() && !m_mainTasks.empty() ? 1 : 0;
    if (m_ready.size() + mainTasks == 0) {
        return false;
    }
    if (m_dice) {
        const auto drawn = (*m_dice)() % (m_ready.size() + mainTasks);
        return drawn == m_ready.size() ? runMainTask() : runReadyThread(drawn);
    }
    const bool isMainNext = mainTasks > 0 && (m_ready.empty() || m_mainTasks.front().order < m_ready.front().order);
    return isMainNext ? runMainTask() : runReadyThread(0);
}

bool VirtualTime::fireEvent()
{
    if (m_events.empty() || m_events.begin()->first.first > m_now) {
        return false;
    }
    const auto event = m_events.extract(m_events.begin());
    m_dueOfEvent.erase(event.key().second);
    runGuarded(event.mapped());
    return true;
}

bool VirtualTime::runMainTask()
{
    const auto task = std::move(m_mainTasks.front().task);
    m_mainTasks.pop_front();
    const Counted depth(m_mainTaskDepth);
    runGuarded(task);
    return true;
}

bool VirtualTime::runReadyThread(std::size_t which)
{
    const auto chosen = m_ready.begin() + static_cast<std::ptrdiff_t>(which);
    auto* const thread = chosen->thread;
    m_ready.erase(chosen);
    thread->resume();
    return true;
}

void VirtualTime::wakeParked()
{
    const auto wakes = [this](const Parked& parked) {
        if (!(parked.deadline && *parked.deadline <= m_now) && !(*parked.met)()) {
            return false;
        }
        m_ready.push_back({++m_order, parked.thread});
        return true;
    };
    std::vector<Parked> still;
    std::copy_if(m_parked.begin(), m_parked.end(), std::back_inserter(still), std::not_fn(wakes));
    m_parked = std::move(still);
}

bool VirtualTime::mayRunMain() const { return *m_holds == 0 && m_mainWaits == 0 && m_mainTaskDepth == 0; }

std::optional<Nanoseconds> VirtualTime::nextDue() const
{
    std::optional<Nanoseconds> next;
    if (!m_events.empty()) {
        next = m_events.begin()->first.first;
    }
    for (const auto& parked : m_parked) {
        if (parked.deadline && (!next || *parked.deadline < *next)) {
            next = parked.deadline;
        }
    }
    return next;
}

void VirtualTime::moveTo(Nanoseconds time)
{
    if (time > m_now) {
        m_now = time;
        m_stepsAtThisTime = 0;
    }
}

} // namespace vorrano::support
