#include "simulator/control/Json.h"

#include <array>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace vorrano::simulator {
namespace {

QString text(const std::string& utf8) { return QString::fromStdString(utf8); }

template <class Kind, std::size_t Count>
Kind kindNamed(const QJsonObject& json, const std::array<std::pair<std::string_view, Kind>, Count>& kinds)
{
    const auto name = json["kind"].toString().toStdString();
    for (const auto& [candidate, kind] : kinds) {
        if (candidate == name) {
            return kind;
        }
    }
    throw std::invalid_argument("no such kind of fault");
}

std::optional<unsigned> timesFrom(const QJsonObject& json)
{
    return json.contains("times") ? std::optional(static_cast<unsigned>(json["times"].toInt(1))) : std::nullopt;
}

} // namespace

QString bytesToJson(const std::string& bytes)
{
    return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

std::string bytesFromJson(const QString& text) { return text.toLatin1().toStdString(); }

QJsonObject toJson(const Memory& memory)
{
    return {
        {"ssid", bytesToJson(memory.ssid)},
        {"password", bytesToJson(memory.password)},
        {"wepKey", bytesToJson(memory.wepKey)},
        {"securityType", memory.securityType},
        {"throttle", memory.throttle},
        {"unit", memory.unit},
        {"connected", memory.connected},
        {"fahrenheit", memory.fahrenheit},
        {"macAddress", bytesToJson(memory.macAddress)},
        {"powerStatus", bytesToJson(memory.powerStatus)},
        {"adcVersion", bytesToJson(memory.adcVersion)},
        {"firmwareVersion", bytesToJson(memory.firmwareVersion)},
        {"nextFirmwareVersion", bytesToJson(memory.nextFirmwareVersion)},
        {"wifiFirmwareVersion", bytesToJson(memory.wifiFirmwareVersion)},
        {"firmwareSize", static_cast<qint64>(memory.firmwareSize)},
    };
}

Memory withJson(Memory memory, const QJsonObject& json)
{
    const auto take = [&json](const char* key, std::string& into) {
        if (json.contains(QLatin1String(key))) {
            into = bytesFromJson(json[QLatin1String(key)].toString());
        }
    };
    const auto takeNumber = [&json](const char* key, std::uint8_t& into) {
        into = static_cast<std::uint8_t>(json[QLatin1String(key)].toInt(into));
    };
    take("ssid", memory.ssid);
    take("password", memory.password);
    take("wepKey", memory.wepKey);
    takeNumber("securityType", memory.securityType);
    takeNumber("throttle", memory.throttle);
    takeNumber("unit", memory.unit);
    memory.connected = json["connected"].toBool(memory.connected);
    memory.fahrenheit = json["fahrenheit"].toDouble(memory.fahrenheit);
    take("macAddress", memory.macAddress);
    take("powerStatus", memory.powerStatus);
    take("adcVersion", memory.adcVersion);
    take("firmwareVersion", memory.firmwareVersion);
    take("nextFirmwareVersion", memory.nextFirmwareVersion);
    take("wifiFirmwareVersion", memory.wifiFirmwareVersion);
    return memory;
}

QString toJson(SimulatedVorrano::Mode mode)
{
    switch (mode) {
    case SimulatedVorrano::Mode::Normal:
        return "normal";
    case SimulatedVorrano::Mode::Restarting:
        return "restarting";
    case SimulatedVorrano::Mode::Bootloader:
        return "bootloader";
    case SimulatedVorrano::Mode::Image:
        return "image";
    }
    return {};
}

QJsonObject imageToJson(const Image& image)
{
    QJsonArray times;
    for (const auto& time : image.times) {
        times.append(static_cast<qint64>((time - image.times.front()).count()));
    }
    return {{"bytes", bytesToJson(image.bytes)}, {"times", times}, {"complete", image.complete}};
}

Fault faultFromJson(const QJsonObject& json)
{
    using Kind = Fault::Kind;
    static constexpr std::array<std::pair<std::string_view, Kind>, 8> kinds{{
        {"silence", Kind::Silence},
        {"delay", Kind::Delay},
        {"split", Kind::Split},
        {"merge", Kind::Merge},
        {"answer", Kind::Answer},
        {"garbage", Kind::Answer},
        {"cut", Kind::Cut},
        {"hangUp", Kind::HangUp},
    }};
    Fault fault;
    fault.kind = kindNamed(json, kinds);
    if (const auto command = bytesFromJson(json["command"].toString()); !command.empty()) {
        fault.command = command.front();
    }
    fault.times = timesFrom(json);
    fault.delay = std::chrono::milliseconds(json["delay"].toInt());
    for (const auto& offset : json["at"].toArray()) {
        fault.at.push_back(static_cast<std::size_t>(offset.toInt()));
    }
    fault.count = static_cast<std::size_t>(json["count"].toInt());
    fault.bytes = json["kind"] == "garbage" ? std::string(kNonsense) : bytesFromJson(json["bytes"].toString());
    return fault;
}

ServiceFault serviceFaultFromJson(const QJsonObject& json)
{
    using Kind = ServiceFault::Kind;
    static constexpr std::array<std::pair<std::string_view, Kind>, 6> kinds{{
        {"noAnswer", Kind::NoAnswer},
        {"slow", Kind::Slow},
        {"cut", Kind::Cut},
        {"answer", Kind::Answer},
        {"redirect", Kind::Redirect},
        {"endless", Kind::Endless},
    }};
    ServiceFault fault;
    fault.kind = kindNamed(json, kinds);
    if (json.contains("method")) {
        fault.method = json["method"].toString().toStdString();
    }
    fault.times = timesFrom(json);
    fault.delay = std::chrono::milliseconds(json["delay"].toInt());
    fault.count = static_cast<std::size_t>(json["count"].toInt());
    fault.response = {json["status"].toInt(200), json["body"].toString().toStdString(),
                      json["contentType"].toString("application/json").toStdString()};
    fault.location = json["location"].toString().toStdString();
    return fault;
}

QJsonArray requestsToJson(const std::vector<RecordedRequest>& requests)
{
    QJsonArray array;
    for (const auto& request : requests) {
        array.append(QJsonObject{{"target", bytesToJson(request.target)}, {"head", bytesToJson(request.head)}});
    }
    return array;
}

QJsonArray accountsToJson(const std::vector<Account>& accounts)
{
    QJsonArray array;
    for (const auto& account : accounts) {
        QJsonObject values;
        for (const auto& [key, value] : account.values) {
            values[text(key)] = text(value);
        }
        array.append(QJsonObject{{"id", text(account.id)}, {"values", values}});
    }
    return array;
}

QJsonArray registrationsToJson(const std::vector<Registration>& registrations)
{
    QJsonArray array;
    for (const auto& registration : registrations) {
        array.append(QJsonObject{{"accountId", text(registration.accountId)},
                                 {"macAddress", text(registration.macAddress)},
                                 {"name", text(registration.name)}});
    }
    return array;
}

std::map<std::string, std::string> valuesFromJson(const QJsonObject& json)
{
    std::map<std::string, std::string> values;
    for (auto it = json.begin(); it != json.end(); ++it) {
        values[it.key().toStdString()] = it.value().toString().toStdString();
    }
    return values;
}

} // namespace vorrano::simulator
