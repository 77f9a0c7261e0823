#pragma once

#include "simulator/device/SimulatedVorrano.h"
#include "simulator/service/HttpServer.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <string>

// The control socket's forms of things. Bytes are texts whose characters are the bytes (U+0000 to U+00FF).
// What can't be read throws std::invalid_argument.
namespace vorrano::simulator {

[[nodiscard]] QString bytesToJson(const std::string& bytes);
[[nodiscard]] std::string bytesFromJson(const QString& text);

[[nodiscard]] QJsonObject toJson(const Memory& memory);
// `json`'s members over what `memory` has.
[[nodiscard]] Memory withJson(Memory memory, const QJsonObject& json);
[[nodiscard]] QString toJson(SimulatedVorrano::Mode mode);
// Each byte's time is in nanoseconds after the first byte's.
[[nodiscard]] QJsonObject imageToJson(const Image& image);

[[nodiscard]] Fault faultFromJson(const QJsonObject& json);
[[nodiscard]] ServiceFault serviceFaultFromJson(const QJsonObject& json);

[[nodiscard]] QJsonArray requestsToJson(const std::vector<RecordedRequest>& requests);
[[nodiscard]] QJsonArray accountsToJson(const std::vector<Account>& accounts);
[[nodiscard]] QJsonArray registrationsToJson(const std::vector<Registration>& registrations);
[[nodiscard]] std::map<std::string, std::string> valuesFromJson(const QJsonObject& json);

} // namespace vorrano::simulator
