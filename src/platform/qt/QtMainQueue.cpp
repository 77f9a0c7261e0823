#include "platform/qt/QtMainQueue.h"

#include "platform/Guarded.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QTimer>

#include <algorithm>
#include <condition_variable>
#include <iterator>
#include <utility>

namespace vorrano::qt {

using platform::Mutex;
using platform::MutexLock;
using platform::Subscription;
using platform::Task;

// Turns the queue's wake-ups into events of the main thread, and owns its timers.
class QtMainQueue::Waker : public QObject {
public:
    explicit Waker(QtMainQueue& queue)
        : m_queue(queue)
    {}

    void wake() { QCoreApplication::postEvent(this, new QEvent(QEvent::User)); }

    bool event(QEvent* event) override
    {
        if (event->type() != QEvent::User) {
            return QObject::event(event);
        }
        m_queue.runNext();
        return true;
    }

private:
    QtMainQueue& m_queue;
};

// Where a caller of sync() waits. When the entry is dropped, the caller goes on.
class QtMainQueue::Waiter {
public:
    void finish(bool ran)
    {
        const MutexLock lock(m_mutex);
        m_ran = ran;
        m_finished = true;
        m_condition.notify_all();
    }

    bool wait()
    {
        const MutexLock lock(m_mutex);
        while (!m_finished) {
            m_condition.wait(m_mutex);
        }
        return m_ran;
    }

private:
    Mutex m_mutex;
    std::condition_variable_any m_condition;
    bool m_finished VORRANO_GUARDED_BY(m_mutex) = false;
    bool m_ran VORRANO_GUARDED_BY(m_mutex) = false;
};

QtMainQueue::QtMainQueue(platform::SystemLog& log)
    : m_log(log)
    , m_mainThread(std::this_thread::get_id())
    , m_waker(std::make_unique<Waker>(*this))
{}

QtMainQueue::~QtMainQueue()
{
    Lane dropped;
    {
        const MutexLock lock(m_mutex);
        m_ended = true;
        dropped.swap(m_tasks);
        std::move(m_pastAlerts.begin(), m_pastAlerts.end(), std::back_inserter(dropped));
        m_pastAlerts.clear();
    }
    for (const auto& entry : dropped) {
        if (entry.waiter) {
            entry.waiter->finish(false);
        }
    }
}

void QtMainQueue::async(Task task) { submit(&QtMainQueue::m_tasks, {std::move(task), nullptr}); }

void QtMainQueue::asyncPastAlerts(Task task) { submit(&QtMainQueue::m_pastAlerts, {std::move(task), nullptr}); }

void QtMainQueue::asyncFirst(Task task)
{
    const MutexLock lock(m_mutex);
    if (m_ended) {
        return;
    }
    m_tasks.push_front({std::move(task), nullptr});
    wakeIfReady();
}

bool QtMainQueue::sync(Task task)
{
    if (!isMainThread()) {
        const auto waiter = std::make_shared<Waiter>();
        return submit(&QtMainQueue::m_tasks, {std::move(task), waiter}) && waiter->wait();
    }
    {
        const MutexLock lock(m_mutex);
        if (m_ended) {
            return false;
        }
    }
    platform::guarded(m_log, task);
    return true;
}

void QtMainQueue::after(std::chrono::nanoseconds delay, Task task)
{
    {
        const MutexLock lock(m_mutex);
        if (m_ended) {
            return;
        }
    }
    auto* timer = new QTimer(m_waker.get());
    timer->setSingleShot(true);
    timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(timer, &QTimer::timeout, timer, [this, timer, task = std::move(task)]() mutable {
        async(std::move(task));
        timer->deleteLater();
    });
    timer->start(std::chrono::ceil<std::chrono::milliseconds>(std::max(delay, std::chrono::nanoseconds::zero())));
}

bool QtMainQueue::isMainThread() const { return std::this_thread::get_id() == m_mainThread; }

bool QtMainQueue::submit(Lane QtMainQueue::*lane, Entry entry)
{
    const MutexLock lock(m_mutex);
    if (m_ended) {
        return false;
    }
    (this->*lane).push_back(std::move(entry));
    wakeIfReady();
    return true;
}

QtMainQueue::Lane* QtMainQueue::readyLane()
{
    if (m_holdsOfEverything > 0) {
        return nullptr;
    }
    if (!m_pastAlerts.empty()) {
        return &m_pastAlerts;
    }
    return m_holds > 0 || m_tasks.empty() ? nullptr : &m_tasks;
}

void QtMainQueue::wakeIfReady()
{
    if (!m_woken && readyLane() != nullptr) {
        m_woken = true;
        m_waker->wake();
    }
}

void QtMainQueue::runNext()
{
    Entry entry;
    {
        const MutexLock lock(m_mutex);
        m_woken = false;
        Lane* const lane = readyLane();
        if (lane == nullptr) {
            return;
        }
        entry = std::move(lane->front());
        lane->pop_front();
        wakeIfReady();
    }
    run(std::move(entry));
}

void QtMainQueue::run(Entry entry)
{
    platform::guarded(m_log, entry.task);
    entry.task = nullptr;
    if (entry.waiter) {
        entry.waiter->finish(true);
    }
}

Subscription QtMainQueue::count(int QtMainQueue::*holds)
{
    const MutexLock lock(m_mutex);
    ++(this->*holds);
    return Subscription([this, holds] {
        const MutexLock locked(m_mutex);
        --(this->*holds);
        wakeIfReady();
    });
}

Subscription QtMainQueue::hold() { return count(&QtMainQueue::m_holds); }

Subscription QtMainQueue::holdEverything() { return count(&QtMainQueue::m_holdsOfEverything); }

bool QtMainQueue::isHeld() const
{
    const MutexLock lock(m_mutex);
    return m_holds + m_holdsOfEverything > 0;
}

void QtMainQueue::endAndDrain()
{
    while (true) {
        Entry entry;
        {
            const MutexLock lock(m_mutex);
            Lane& lane = m_pastAlerts.empty() ? m_tasks : m_pastAlerts;
            if (lane.empty()) {
                m_ended = true;
                break;
            }
            entry = std::move(lane.front());
            lane.pop_front();
        }
        run(std::move(entry));
    }
    for (QTimer* const timer : m_waker->findChildren<QTimer*>()) {
        delete timer;
    }
}

} // namespace vorrano::qt
