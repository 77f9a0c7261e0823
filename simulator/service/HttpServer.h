#pragma once

#include "simulator/service/ServiceFault.h"
#include "simulator/service/SimulatedService.h"

#include <QTcpServer>

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QTcpSocket;

namespace vorrano::simulator {

// A request as it came: the target of its first line, byte for byte, and the whole head.
struct RecordedRequest {
    std::string target;
    std::string head;
};

// The simulated web service on loopback ports, HTTP and HTTPS: one request per connection.
// Threads: the one of the event loop.
class HttpServer {
public:
    HttpServer(SimulatedService& service, std::function<void(const RecordedRequest&)> recorded);
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    // Port 0 takes a free one. False when it is taken.
    bool listen(std::uint16_t port);
    // HTTPS as well, with the certificate chain and key of these PEM files; again with others to change them. Throws
    // std::runtime_error when they can't be read or the port is taken.
    void listenSecurely(std::uint16_t port, const std::string& certificateFile, const std::string& keyFile);
    // Refuses connections of both kinds until the next listen().
    void close();
    [[nodiscard]] std::uint16_t port() const { return m_server.serverPort(); }
    [[nodiscard]] std::uint16_t securePort() const { return m_secureServer ? m_secureServer->serverPort() : 0; }

    void order(const ServiceFault& fault) { m_faults.push_back(fault); }
    void clearFaults() { m_faults.clear(); }

    [[nodiscard]] const std::vector<RecordedRequest>& requests() const { return m_requests; }
    void clearRequests() { m_requests.clear(); }

private:
    void acceptFrom(QTcpServer& server);
    void read(QTcpSocket* socket);
    void answer(QTcpSocket* socket, const std::string& target);
    [[nodiscard]] std::optional<ServiceFault> faultFor(const std::string& target);

    SimulatedService& m_service;
    std::function<void(const RecordedRequest&)> m_recorded;
    std::list<ServiceFault> m_faults;
    std::vector<RecordedRequest> m_requests;
    // They go first, as their sockets use the others to the end.
    QTcpServer m_server;
    std::unique_ptr<QTcpServer> m_secureServer;
};

} // namespace vorrano::simulator
