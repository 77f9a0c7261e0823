#include "LibserialportPort.h"

#include "EchoDevice.h"

#include <array>
#include <stdexcept>

#include <libserialport.h>

namespace vorrano::bench {

namespace {

constexpr int kBaudRate = 9600;
constexpr unsigned kTimeout = 2000; // milliseconds

} // namespace

LibserialportPort::LibserialportPort(const std::string& node)
{
    if (sp_get_port_by_name(node.c_str(), &m_port) != SP_OK) {
        throw std::runtime_error("libserialport does not know " + node);
    }
}

LibserialportPort::~LibserialportPort() { sp_free_port(m_port); }

bool LibserialportPort::open()
{
    return sp_open(m_port, SP_MODE_READ_WRITE) == SP_OK && sp_set_baudrate(m_port, kBaudRate) == SP_OK;
}

void LibserialportPort::close() { sp_close(m_port); }

bool LibserialportPort::exchangeOnce(char request)
{
    std::array<char, kReplyLength> reply{};
    return sp_blocking_write(m_port, &request, 1, kTimeout) == 1 &&
           sp_blocking_read(m_port, reply.data(), reply.size(), kTimeout) == kReplyLength;
}

} // namespace vorrano::bench
