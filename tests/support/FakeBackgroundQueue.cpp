#include "support/FakeBackgroundQueue.h"

#include <utility>

namespace vorrano::support {

FakeBackgroundQueue::FakeBackgroundQueue(VirtualTime& time)
    : m_time(time)
{}

void FakeBackgroundQueue::async(Task task)
{
    m_time.runInBackground(std::move(task));
    // A free thread may begin before the call returns.
    m_time.crossing();
}

std::shared_ptr<platform::SerialQueue> FakeBackgroundQueue::makeSerialQueue(std::string label)
{
    m_labels.push_back(std::move(label));
    return std::make_shared<FakeSerialQueue>(m_time, m_delays);
}

} // namespace vorrano::support
