#pragma once

#include <QJsonObject>
#include <QLocalServer>
#include <QLocalSocket>

#include <functional>
#include <string>
#include <vector>

namespace vorrano::simulator {

// The simulator's control socket: a local socket on which each line is a JSON object.
//
// A request names what to do ({"do": "unplug"}) and gets one answer, {"ok": true, ...} or {"ok": false, "error": ...},
// in the order of the requests. Who has sent {"do": "subscribe"} gets an {"event": ...} for each thing that happens.
// Threads: the one of the event loop.
class ControlServer {
public:
    // Does what a request asks and gives the answer's further members; what it throws becomes the error's text.
    using Handler = std::function<QJsonObject(const QJsonObject& request)>;

    // Throws std::runtime_error when the path can't be used; a socket that nobody listens on any more is replaced.
    ControlServer(const std::string& path, Handler handler);
    ControlServer(const ControlServer&) = delete;
    ControlServer& operator=(const ControlServer&) = delete;

    // Adds when it happened, in nanoseconds of the monotonic clock.
    void publish(QJsonObject event);

private:
    void accept(QLocalSocket* socket);
    void read(QLocalSocket* socket);
    [[nodiscard]] QJsonObject answer(QLocalSocket* socket, const QByteArray& line);

    Handler m_handler;
    std::vector<QLocalSocket*> m_subscribers;
    // Goes first: its sockets say goodbye to the others.
    QLocalServer m_server;
};

} // namespace vorrano::simulator
