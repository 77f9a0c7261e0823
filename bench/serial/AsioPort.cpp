#include "AsioPort.h"

#include "EchoDevice.h"

#include <asio/buffer.hpp>
#include <asio/read.hpp>
#include <asio/write.hpp>

#include <array>
#include <chrono>
#include <cstddef>
#include <system_error>
#include <utility>

namespace vorrano::bench {

namespace {

constexpr unsigned kBaudRate = 9600;
constexpr std::chrono::seconds kTimeout{2};

} // namespace

AsioPort::AsioPort(std::string node)
    : m_node(std::move(node))
{}

bool AsioPort::open()
{
    std::error_code error;
    m_port.open(m_node, error);
    if (!error) {
        m_port.set_option(asio::serial_port::baud_rate(kBaudRate), error);
    }
    return !error;
}

void AsioPort::close()
{
    std::error_code ignored;
    m_port.close(ignored);
}

bool AsioPort::exchangeOnce(char request)
{
    std::error_code error;
    asio::write(m_port, asio::buffer(&request, 1), error);
    if (error) {
        return false;
    }
    std::array<char, kReplyLength> reply{};
    bool answered = false;
    asio::async_read(m_port, asio::buffer(reply),
                     [&](const std::error_code& failure, std::size_t /*count*/) { answered = !failure; });
    m_context.restart();
    m_context.run_for(kTimeout);
    if (!m_context.stopped()) {
        // The read still refers to what is here.
        m_port.cancel(error);
        m_context.run();
    }
    return answered;
}

} // namespace vorrano::bench
