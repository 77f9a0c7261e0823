#include "simulator/service/HttpServer.h"

#include "simulator/service/HttpHead.h"

#include <QFile>
#include <QHostAddress>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <QTcpSocket>
#include <QTimer>

#include <algorithm>
#include <stdexcept>

namespace vorrano::simulator {
namespace {

constexpr std::size_t kLongestHead = 64 * 1024;
constexpr qint64 kEndlessAhead = 64 * 1024;

std::string headOf(const Response& response, const std::string& more = {})
{
    return "HTTP/1.1 " + std::to_string(response.status) + " Simulated\r\nContent-Type: " + response.contentType +
           "\r\n" + more + "Connection: close\r\n";
}

std::string lengthLine(const Response& response)
{
    return "Content-Length: " + std::to_string(response.body.size()) + "\r\n\r\n";
}

void send(QTcpSocket* socket, const std::string& bytes)
{
    socket->write(bytes.data(), static_cast<qint64>(bytes.size()));
}

void sendWhole(QTcpSocket* socket, const Response& response, const std::string& more = {})
{
    send(socket, headOf(response, more) + lengthLine(response) + response.body);
    socket->disconnectFromHost();
}

// A caller who stops reading stops it, so that it does not fill the memory.
void sendEndless(QTcpSocket* socket)
{
    send(socket, headOf({}) + "\r\n");
    const auto* const secure = qobject_cast<QSslSocket*>(socket);
    const auto fill = [socket, secure] {
        const auto encrypted = secure != nullptr ? secure->encryptedBytesToWrite() : 0;
        if (socket->bytesToWrite() + encrypted < kEndlessAhead) {
            send(socket, std::string(static_cast<std::size_t>(kEndlessAhead), ' '));
        }
    };
    // What is encrypted counts as written; what is sent of it has a signal of its own.
    QObject::connect(socket, &QTcpSocket::bytesWritten, socket, fill);
    if (secure != nullptr) {
        QObject::connect(secure, &QSslSocket::encryptedBytesWritten, socket, fill);
    }
    fill();
}

} // namespace

HttpServer::HttpServer(SimulatedService& service, std::function<void(const RecordedRequest&)> recorded)
    : m_service(service)
    , m_recorded(std::move(recorded))
{
    acceptFrom(m_server);
}

bool HttpServer::listen(std::uint16_t port)
{
    return m_server.isListening() || m_server.listen(QHostAddress::LocalHost, port);
}

void HttpServer::listenSecurely(std::uint16_t port, const std::string& certificateFile, const std::string& keyFile)
{
    QFile keyBytes(QString::fromStdString(keyFile));
    const auto certificates = QSslCertificate::fromPath(QString::fromStdString(certificateFile));
    if (certificates.isEmpty() || !keyBytes.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("the certificate or its key can't be read");
    }
    auto configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificateChain(certificates);
    configuration.setPrivateKey(QSslKey(&keyBytes, QSsl::Rsa));
    m_secureServer.reset();
    auto server = std::make_unique<QSslServer>();
    server->setSslConfiguration(configuration);
    acceptFrom(*server);
    if (!server->listen(QHostAddress::LocalHost, port)) {
        throw std::runtime_error("the secure port is taken");
    }
    m_secureServer = std::move(server);
}

void HttpServer::close()
{
    m_server.close();
    if (m_secureServer) {
        m_secureServer->close();
    }
}

void HttpServer::acceptFrom(QTcpServer& server)
{
    QObject::connect(&server, &QTcpServer::pendingConnectionAvailable, &server, [this, &server] {
        while (auto* socket = server.nextPendingConnection()) {
            QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { read(socket); });
            read(socket);
        }
    });
}

void HttpServer::read(QTcpSocket* socket)
{
    const auto sofar = socket->peek(kLongestHead).toStdString();
    const auto length = lengthOfHead(sofar);
    if (!length) {
        if (sofar.size() >= kLongestHead) {
            socket->abort();
        }
        return;
    }
    const auto head = socket->read(static_cast<qint64>(*length)).toStdString();
    const RecordedRequest request{targetOfHead(head), head};
    m_requests.push_back(request);
    m_recorded(request);
    answer(socket, request.target);
}

std::optional<ServiceFault> HttpServer::faultFor(const std::string& target)
{
    const auto method = methodOfTarget(target);
    const auto found = std::find_if(m_faults.begin(), m_faults.end(),
                                    [&](const ServiceFault& fault) { return fault.method.value_or(method) == method; });
    if (found == m_faults.end()) {
        return std::nullopt;
    }
    auto fault = *found;
    if (found->times && --*found->times == 0) {
        m_faults.erase(found);
    }
    return fault;
}

void HttpServer::answer(QTcpSocket* socket, const std::string& target)
{
    const auto fault = faultFor(target);
    if (!fault) {
        sendWhole(socket, m_service.answer(target));
        return;
    }
    switch (fault->kind) {
    case ServiceFault::Kind::NoAnswer:
        break;
    case ServiceFault::Kind::Slow:
        QTimer::singleShot(fault->delay, socket,
                           [this, socket, target] { sendWhole(socket, m_service.answer(target)); });
        break;
    case ServiceFault::Kind::Cut: {
        const auto whole = m_service.answer(target);
        send(socket, headOf(whole) + lengthLine(whole) + whole.body.substr(0, fault->count));
        socket->disconnectFromHost();
        break;
    }
    case ServiceFault::Kind::Answer:
        sendWhole(socket, fault->response);
        break;
    case ServiceFault::Kind::Redirect:
        sendWhole(socket, {302, "", "text/plain"},
                  "Location: " + (fault->location.empty() ? target : fault->location) + "\r\n");
        break;
    case ServiceFault::Kind::Endless:
        sendEndless(socket);
        break;
    }
}

} // namespace vorrano::simulator
