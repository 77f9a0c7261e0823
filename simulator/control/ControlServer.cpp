#include "simulator/control/ControlServer.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonParseError>

#include <chrono>
#include <exception>
#include <filesystem>
#include <stdexcept>

namespace vorrano::simulator {
namespace {

void send(QLocalSocket* socket, const QJsonObject& object)
{
    socket->write(QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n');
}

QJsonObject refusal(const QString& why) { return {{"ok", false}, {"error", why}}; }

// A socket may be left of a simulator that was killed. Somebody else's file has to stay.
void expectNothingButASocketAt(const QString& path)
{
    const auto there = std::filesystem::symlink_status(path.toStdString()).type();
    if (there != std::filesystem::file_type::not_found && there != std::filesystem::file_type::socket) {
        throw std::runtime_error("control socket: " + path.toStdString() + " is there already");
    }
}

} // namespace

ControlServer::ControlServer(const std::string& path, Handler handler)
    : m_handler(std::move(handler))
{
    // Qt would take a relative path from the folder for temporary files.
    const auto name = QFileInfo(QString::fromStdString(path)).absoluteFilePath();
    expectNothingButASocketAt(name);
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    QLocalServer::removeServer(name);
    if (!m_server.listen(name)) {
        throw std::runtime_error("control socket: " + m_server.errorString().toStdString());
    }
    QObject::connect(&m_server, &QLocalServer::newConnection, &m_server, [this] {
        while (auto* socket = m_server.nextPendingConnection()) {
            accept(socket);
        }
    });
}

void ControlServer::accept(QLocalSocket* socket)
{
    QObject::connect(socket, &QLocalSocket::readyRead, socket, [this, socket] { read(socket); });
    QObject::connect(socket, &QLocalSocket::disconnected, socket, [this, socket] {
        std::erase(m_subscribers, socket);
        socket->deleteLater();
    });
}

void ControlServer::read(QLocalSocket* socket)
{
    while (socket->canReadLine()) {
        send(socket, answer(socket, socket->readLine()));
    }
}

QJsonObject ControlServer::answer(QLocalSocket* socket, const QByteArray& line)
{
    QJsonParseError error{};
    const auto document = QJsonDocument::fromJson(line, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        return refusal("not a JSON object");
    }
    try {
        auto result = m_handler(document.object());
        if (document["do"] == "subscribe") {
            m_subscribers.push_back(socket);
        }
        result["ok"] = true;
        return result;
    } catch (const std::exception& exception) {
        return refusal(exception.what());
    }
}

void ControlServer::publish(QJsonObject event)
{
    const std::chrono::nanoseconds now = std::chrono::steady_clock::now().time_since_epoch();
    event["time"] = static_cast<qint64>(now.count());
    for (auto* subscriber : m_subscribers) {
        send(subscriber, event);
    }
}

} // namespace vorrano::simulator
