#pragma once

#include "BlockingPort.h"

#include <asio/io_context.hpp>
#include <asio/serial_port.hpp>

#include <string>

namespace vorrano::bench {

// Asio's serial port, read asynchronously with a time-out, on the thread that asks.
class AsioPort final : public BlockingPort<Port> {
public:
    explicit AsioPort(std::string node);

    bool open() override;
    void close() override;

private:
    [[nodiscard]] bool exchangeOnce(char request) override;

    const std::string m_node;
    asio::io_context m_context;
    asio::serial_port m_port{m_context};
};

} // namespace vorrano::bench
