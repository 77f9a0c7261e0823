#include "QtPort.h"

#include "EchoDevice.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <chrono>
#include <utility>

namespace vorrano::bench {

QtPort::QtPort(const std::string& node)
{
    m_port.setPortName(QString::fromStdString(node));
    m_port.setBaudRate(QSerialPort::Baud9600);
    m_timeout.setSingleShot(true);
    QObject::connect(&m_port, &QSerialPort::readyRead, &m_port, [this] { readyRead(); });
    QObject::connect(&m_timeout, &QTimer::timeout, &m_port, [this] { m_done(false); });
}

bool QtPort::open() { return m_port.open(QSerialPort::ReadWrite); }

void QtPort::close() { m_port.close(); }

void QtPort::exchange(char request, int times, std::function<void(bool)> done)
{
    m_request = request;
    m_left = times;
    m_done = std::move(done);
    next();
}

void QtPort::next()
{
    if (m_left == 0) {
        m_done(true);
        return;
    }
    m_received.clear();
    m_timeout.start(std::chrono::seconds(2));
    m_port.write(&m_request, 1);
}

void QtPort::readyRead()
{
    m_received += m_port.readAll().toStdString();
    if (m_received.size() < kReplyLength) {
        return;
    }
    m_timeout.stop();
    replied();
    --m_left;
    next();
}

} // namespace vorrano::bench
