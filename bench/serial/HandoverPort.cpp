#include "HandoverPort.h"

#include <utility>

namespace vorrano::bench {

void HandoverPort::receiveStream(std::function<void(bool)> done)
{
    m_check = {};
    m_reader = std::thread([this, done = std::move(done)] {
        const auto handOver = [this](auto task) {
            QMetaObject::invokeMethod(&m_mainThread, std::move(task), Qt::QueuedConnection);
        };
        const bool isWhole = readStream([&](std::span<const char> chunk) {
            handOver([this, bytes = std::string(chunk.begin(), chunk.end())] { m_check.take(bytes); });
        });
        handOver([this, done, isWhole] {
            m_reader.join();
            done(isWhole && m_check.wentWell());
        });
    });
}

} // namespace vorrano::bench
