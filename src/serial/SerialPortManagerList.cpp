#include "serial/SerialPortManager.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <stdexcept>
#include <utility>

// The list by its indexes, and the notification of its changes.
namespace vorrano::serial {

namespace {

using Indexes = std::vector<std::size_t>;

// Each index is larger than the one before and below `end`.
void require(const Indexes& indexes, std::size_t end)
{
    const auto isNoRise = [](std::size_t left, std::size_t right) { return left >= right; };
    if (std::adjacent_find(indexes.begin(), indexes.end(), isNoRise) != indexes.end()) {
        throw std::invalid_argument("the indexes of ports do not ascend");
    }
    if (!indexes.empty() && indexes.back() >= end) {
        throw std::out_of_range("there is no port at that index");
    }
}

std::ptrdiff_t signedOf(std::size_t index) { return static_cast<std::ptrdiff_t>(index); }

} // namespace

void SerialPortManager::setAvailablePorts(SerialPorts ports)
{
    m_availablePorts = std::move(ports);
    Indexes all(m_availablePorts.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    m_observers.tell({SerialPortsChange::Kind::Setting, std::move(all), m_availablePorts});
}

platform::Subscription
SerialPortManager::observeAvailablePorts(std::function<void(const SerialPortsChange& change)> told)
{
    return m_observers.add(std::move(told));
}

std::shared_ptr<SerialPort> SerialPortManager::objectInAvailablePortsAtIndex(std::size_t index) const
{
    return m_availablePorts.at(index);
}

void SerialPortManager::insertAvailablePortsAtIndexes(const SerialPorts& ports, const Indexes& indexes)
{
    if (ports.size() != indexes.size()) {
        throw std::invalid_argument("there is not one index for each port");
    }
    require(indexes, m_availablePorts.size() + ports.size());
    for (std::size_t at = 0; at < ports.size(); ++at) {
        m_availablePorts.insert(m_availablePorts.begin() + signedOf(indexes[at]), ports[at]);
    }
    m_observers.tell({SerialPortsChange::Kind::Insertion, indexes, ports});
}

void SerialPortManager::insertObjectInAvailablePortsAtIndex(const std::shared_ptr<SerialPort>& port, std::size_t index)
{
    insertAvailablePortsAtIndexes({port}, {index});
}

void SerialPortManager::removeAvailablePortsAtIndexes(const Indexes& indexes)
{
    require(indexes, m_availablePorts.size());
    SerialPorts removed;
    for (const auto index : indexes) {
        const auto place = m_availablePorts.begin() + signedOf(index - removed.size());
        removed.push_back(*place);
        m_availablePorts.erase(place);
    }
    m_observers.tell({SerialPortsChange::Kind::Removal, indexes, removed});
}

void SerialPortManager::removeObjectFromAvailablePortsAtIndex(std::size_t index)
{
    removeAvailablePortsAtIndexes({index});
}

void SerialPortManager::append(const SerialPorts& ports)
{
    if (ports.empty()) {
        return;
    }
    Indexes indexes(ports.size());
    std::iota(indexes.begin(), indexes.end(), m_availablePorts.size());
    insertAvailablePortsAtIndexes(ports, indexes);
}

void SerialPortManager::removeEqualTo(const SerialPorts& ports)
{
    Indexes indexes;
    for (std::size_t at = 0; at < m_availablePorts.size(); ++at) {
        const auto isIt = [&](const auto& port) { return port->isEqual(*m_availablePorts[at]); };
        if (std::any_of(ports.begin(), ports.end(), isIt)) {
            indexes.push_back(at);
        }
    }
    if (!indexes.empty()) {
        removeAvailablePortsAtIndexes(indexes);
    }
}

} // namespace vorrano::serial
