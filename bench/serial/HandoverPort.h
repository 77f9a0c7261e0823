#pragma once

#include "PosixPort.h"

#include <QObject>

#include <thread>

namespace vorrano::bench {

// The floor of a port whose reader does not stand the main loop still: the bare loop on a thread of its own, that posts
// each chunk to the main loop, and does nothing else.
class HandoverPort final : public PosixPort {
public:
    using PosixPort::PosixPort;

    void receiveStream(std::function<void(bool)> done) override;

private:
    QObject m_mainThread;
    StreamCheck m_check;
    std::thread m_reader;
};

} // namespace vorrano::bench
