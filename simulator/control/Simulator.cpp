#include "simulator/control/Simulator.h"

#include "simulator/control/Json.h"

#include <QCoreApplication>

#include <algorithm>
#include <stdexcept>

namespace vorrano::simulator {
namespace {

std::map<std::string, std::string> sampleAccount(const std::string& name, const std::string& password)
{
    return {{"AccountLogin", name},
            {"Password", password},
            {"GuestPassword", "guest of " + name},
            {"Email", name + "@vorrano.example"},
            {"Name", "Sam Sample"},
            {"Address1", "1 Example Street"},
            {"City", "Sampleton"},
            {"State", "Ohio"},
            {"Country", "USA"},
            {"ZipCode", "45001"}};
}

} // namespace

Simulator::Simulator(const Settings& settings)
    : m_serialNumber(settings.serialNumber)
    , m_line({[this](const std::string& bytes) { received(bytes); },
              [this](const std::string& bytes) {
                  publish({{"event", "sent"}, {"bytes", bytesToJson(bytes)}});
              },
              [this] { unplug(); }})
    , m_http(m_service,
             [this](const RecordedRequest& request) {
                 publish({{"event", "request"}, {"target", bytesToJson(request.target)}});
             })
    , m_control(settings.controlPath, [this](const QJsonObject& request) { return handle(request); })
{
    m_tick.setSingleShot(true);
    QObject::connect(&m_tick, &QTimer::timeout, &m_tick, [this] { tick(); });
    if (!m_http.listen(settings.httpPort)) {
        throw std::runtime_error("the port of the web service is taken");
    }
    if (!settings.accountName.empty()) {
        m_service.addAccount(sampleAccount(settings.accountName, settings.accountPassword));
    }
    if (settings.pluggedIn) {
        plug();
    }
}

QJsonObject Simulator::state() const
{
    return {
        {"device", toJson(m_device.memory())},
        {"mode", toJson(m_device.mode())},
        {"received", bytesToJson(m_device.received())},
        {"imageSize", static_cast<qint64>(m_device.image().bytes.size())},
        {"imageComplete", m_device.image().complete},
        {"line", QJsonObject{{"plugged", m_line.isPlugged()},
                             {"node", QString::fromStdString(m_line.node())},
                             {"serial", QString::fromStdString(m_serialNumber)},
                             {"baud", static_cast<qint64>(m_line.baud())}}},
        {"service", QJsonObject{{"port", m_http.port()},
                                {"securePort", m_http.securePort()},
                                {"latestFirmware", QString::fromStdString(m_service.latestFirmware())},
                                {"requests", requestsToJson(m_http.requests())},
                                {"accounts", accountsToJson(m_service.accounts())},
                                {"registrations", registrationsToJson(m_service.registrations())}}},
    };
}

QJsonObject Simulator::handle(const QJsonObject& request)
{
    const auto what = request["do"].toString();
    if (what == "state" || what == "subscribe") {
        return state();
    }
    if (what == "image") {
        return imageToJson(m_device.image());
    }
    if (what == "plug") {
        plug();
        return {{"node", QString::fromStdString(m_line.node())}};
    }
    if (what == "unplug") {
        unplug();
    } else if (what == "set") {
        setMemory(withJson(m_device.memory(), request));
    } else if (what == "fault") {
        m_device.order(faultFromJson(request));
    } else if (what == "clearFaults") {
        m_device.clearFaults();
    } else if (what == "say") {
        m_line.send({{PtyLine::now(), bytesFromJson(request["bytes"].toString()), false}});
    } else if (what == "hangUpAfterReceiving") {
        m_device.hangUpAfterReceiving(static_cast<std::size_t>(std::max(1, request["count"].toInt())));
    } else if (what == "clearRecords") {
        m_device.clearReceived();
        m_http.clearRequests();
    } else if (what == "quit") {
        QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    } else {
        handleServiceOrder(what, request);
    }
    return {};
}

void Simulator::handleServiceOrder(const QString& what, const QJsonObject& request)
{
    if (what == "addAccount") {
        m_service.addAccount(valuesFromJson(request["values"].toObject()));
    } else if (what == "latestFirmware") {
        m_service.setLatestFirmware(request["version"].toString().toStdString());
    } else if (what == "serviceFault") {
        m_http.order(serviceFaultFromJson(request));
    } else if (what == "clearServiceFaults") {
        m_http.clearFaults();
    } else if (what == "serveSecurely") {
        m_http.listenSecurely(static_cast<std::uint16_t>(request["port"].toInt()),
                              request["certificate"].toString().toStdString(), request["key"].toString().toStdString());
    } else if (what == "refuseConnections") {
        m_http.close();
    } else if (what == "acceptConnections") {
        if (!m_http.listen(static_cast<std::uint16_t>(request["port"].toInt()))) {
            throw std::runtime_error("the port is taken");
        }
    } else {
        throw std::invalid_argument("nothing of that name can be done");
    }
}

void Simulator::plug()
{
    if (m_line.isPlugged()) {
        return;
    }
    m_line.plug();
    publish({{"event", "plugged"},
             {"node", QString::fromStdString(m_line.node())},
             {"serial", QString::fromStdString(m_serialNumber)}});
}

void Simulator::unplug()
{
    if (!m_line.isPlugged()) {
        return;
    }
    const auto node = QString::fromStdString(m_line.node());
    m_line.unplug();
    m_device.cablePulled();
    m_tick.stop();
    publish({{"event", "unplugged"}, {"node", node}, {"serial", QString::fromStdString(m_serialNumber)}});
}

void Simulator::publish(const QJsonObject& event)
{
    m_control.publish(event);
    if (m_listener) {
        m_listener(event);
    }
}

void Simulator::setMemory(const Memory& memory)
{
    m_device.setMemory(memory);
    publish({{"event", "changed"}});
}

void Simulator::setOnlyFault(const std::optional<Fault>& fault)
{
    m_device.clearFaults();
    if (fault) {
        m_device.order(*fault);
    }
}

void Simulator::received(const std::string& bytes)
{
    m_device.receive(bytes, PtyLine::now());
    publish({{"event", "received"}, {"bytes", bytesToJson(bytes)}});
    deviceActed();
}

void Simulator::tick()
{
    const auto before = m_device.mode();
    m_device.advance(PtyLine::now());
    deviceActed();
    if (m_device.mode() != before) {
        publish({{"event", "changed"}});
    }
}

void Simulator::deviceActed()
{
    m_line.send(m_device.takeOutput());
    if (const auto next = m_device.nextEvent()) {
        using std::chrono::milliseconds;
        m_tick.start(std::max(milliseconds::zero(), std::chrono::ceil<milliseconds>(*next - PtyLine::now())));
    }
}

} // namespace vorrano::simulator
