#include "unit/device/CommandTable.h"

#include "device/UtilitiesViewController.h"
#include "device/WifiSetupViewController.h"

namespace vorrano::device {

namespace {

using Fields = std::vector<std::pair<std::string, std::string>>;
using Create = std::shared_ptr<DeviceTabController> (*)();

template <class Tab>
std::shared_ptr<DeviceTabController> create()
{
    return Tab::create();
}
constexpr Create kWifiTab = create<WifiSetupViewController>;
constexpr Create kUtilitiesTab = create<UtilitiesViewController>;

Alert success(std::optional<std::string> title) { return alertOf(std::move(title), "Success"); }
Alert asItIs(const std::string& beginning) { return success(beginning); }
Alert withSpaces(const std::string& beginning) { return success(replaceDollarSignWithSpaces(beginning)); }
Alert throttleOf60(const std::string&) { return alertOf("90", "Throttle is displayed"); }

const Alert kThrottle0 = alertOf("0", "Throttle is displayed");
const Alert kThrottle90 = alertOf("90", "Throttle is displayed");
const Alert kNoUnit = alertOf(std::nullopt, "");

Alert version(const std::string& chunk) { return alertOf(chunk, "Device Firmware Version"); }
Alert wifiVersion(const std::string& chunk) { return alertOf(chunk, "Wifi Firmware Version"); }

Alerts versionsOfSixCharacters(const Chunks& chunks)
{
    Alerts alerts;
    for (const auto& chunk : chunks) {
        if (chunk.size() >= 6) {
            alerts.push_back(version(chunk));
        }
    }
    return alerts;
}

Alerts versionsOfThirteenCharacters(const Chunks& chunks)
{
    Alerts alerts;
    for (const auto& chunk : chunks) {
        if (chunk.size() >= 13) {
            alerts.push_back(wifiVersion(chunk));
        }
    }
    return alerts;
}

Alerts unitOfEach(const Chunks& chunks)
{
    Alerts alerts;
    for (const auto& chunk : chunks) {
        alerts.push_back(chunk == "1\n\r" ? alertOf("Celsius", "") : kNoUnit);
    }
    return alerts;
}

// A beginning of "OK\n\r" is none.
Alerts noneOfAnyPart(const Chunks&) { return {}; }

// Two chunks are joined; one is only kept.
Alerts joined(const Chunks& chunks, const std::string& informativeText)
{
    return chunks.size() < 2 ? Alerts{} : Alerts{alertOf(chunks[0] + chunks[1], informativeText)};
}
Alerts joinedAdc(const Chunks& chunks) { return joined(chunks, "ADC version number"); }
Alerts joinedStatus(const Chunks& chunks) { return joined(chunks, "Vorrano is Connected to your WIFI Network"); }

// Any four bytes are an acknowledgement.
Command setting(const std::string& name, Create tab, const std::string& button, const Fields& fields,
                const std::string& sent)
{
    return {.name = name,
            .create = tab,
            .button = button,
            .fields = fields,
            .sent = sent,
            .kind = Kind::Request,
            .reply = "Stored\n\r",
            .answered = {success("Stored\n\r")},
            .garbage = {success(kGarbage)},
            .noText = {success(std::nullopt)},
            .merged = {success("Stored\n\rOK\n\r")},
            .enough = 4,
            .shown = asItIs};
}

// A stored text ends with "\n\n\r", and nothing stands behind it.
Command storedText(const std::string& name, Create tab, const std::string& button, const std::string& sent,
                   Alert (*shown)(const std::string&))
{
    const std::string reply = "My$Net\n\n\r";
    return {.name = name,
            .create = tab,
            .button = button,
            .sent = sent,
            .kind = Kind::Request,
            .reply = reply,
            .answered = {shown(reply)},
            .garbage = {kTryAgain},
            .noText = {success(std::nullopt)},
            .merged = {kTryAgain},
            .enough = reply.size(),
            .shown = shown};
}

Command reset(const std::string& name, Create tab, const std::string& button, const std::string& sent,
              const std::string& title)
{
    const Alerts finished = {success(title)};
    return {.name = name,
            .create = tab,
            .button = button,
            .sent = sent,
            .kind = Kind::Reset,
            .reply = "Ready\n\r",
            .answered = finished,
            .garbage = finished,
            .noText = finished,
            .merged = finished};
}

Command connectivityAsRequest()
{
    return {.name = "WifiConnectivity",
            .create = kWifiTab,
            .button = "buttonCheckNetworkConnection",
            .sent = "2",
            .reply = "Connected\n\r",
            .answered = {success("Connected\n\r")},
            .garbage = {kTryAgain},
            .noText = {success(std::nullopt)},
            .merged = {success("Connected\n\rOK\n\r")},
            .enough = 11,
            .shown = asItIs};
}

Command powerStatus()
{
    return {.name = "PowerStatus",
            .create = kUtilitiesTab,
            .button = "buttonPowerStatus",
            .sent = "0",
            .reply = "Power OK\n\r",
            .answered = {success("Power OK\n\r")},
            .garbage = {success(kGarbage)},
            .noText = {success(std::nullopt)},
            .merged = {success("Power OK\n\rOK\n\r")},
            .enough = 4,
            .shown = asItIs};
}

Command macAddress()
{
    const std::string reply = "00:1B:44:11:3A:B7\n\r";
    return {.name = "MacAddress",
            .create = kUtilitiesTab,
            .button = "buttonMacAddress",
            .sent = "3",
            .reply = reply,
            .answered = {success(reply)},
            .garbage = {kTryAgain},
            .noText = {kTryAgain},
            .merged = {success(reply + kNext)},
            .enough = 19,
            .shown = asItIs};
}

Command readThrottle()
{
    return {.name = "ReadThrottle",
            .create = kUtilitiesTab,
            .button = "buttonGetThrottle",
            .sent = "f",
            .reply = "60\n\r",
            .answered = {kThrottle90},
            .garbage = {kThrottle0},
            .noText = {kThrottle0},
            .merged = {kThrottle90},
            .enough = 4,
            .shown = throttleOf60};
}

Command raw(const std::string& name, const std::string& button, const std::string& sent, const std::string& reply)
{
    return {.name = name, .create = kUtilitiesTab, .button = button, .sent = sent, .kind = Kind::Raw, .reply = reply};
}

Command firmwareVersion()
{
    auto command = raw("FirmwareVersion", "buttonFirmwareVersion", "4", "9.50\n\r");
    command.answered = {version("9.50\n\r")};
    command.garbage = {version(kGarbage)};
    command.merged = {version("9.50\n\rOK\n\r")};
    command.shownOfChunks = versionsOfSixCharacters;
    return command;
}

Command wifiFirmwareVersion()
{
    auto command = raw("WifiFirmwareVersion", "wifiFirmwareQuery", "5", "WF200 2.1.7\n\r");
    command.answered = {wifiVersion("WF200 2.1.7\n\r")};
    command.merged = {wifiVersion("WF200 2.1.7\n\rOK\n\r")};
    command.shownOfChunks = versionsOfThirteenCharacters;
    return command;
}

// What is gathered is shown with the second chunk only.
Command adcVersion()
{
    auto command = raw("AdcVersion", "buttonADC", "1", "ADC 7\n\r");
    command.shownOfChunks = joinedAdc;
    return command;
}

Command connectivity()
{
    auto command = raw("Connectivity", "buttonNetworkConnectivityStatus", "2", "Connected\n\r");
    command.shownOfChunks = joinedStatus;
    return command;
}

Command readTemperatureUnit()
{
    auto command = raw("ReadTemperatureUnit", "buttonGetTemperatureUnit", "h", "1\n\r");
    command.answered = {alertOf("Celsius", "")};
    command.garbage = {kNoUnit};
    command.noText = {kNoUnit};
    command.merged = {kNoUnit};
    command.shownOfChunks = unitOfEach;
    return command;
}

Command setTemperatureUnit()
{
    auto command = raw("SetTemperatureUnit", "buttonSetTemperatureUnit", "g\x01", "OK\n\r");
    command.answered = {alertOf("OK\n\r", "")};
    command.shownOfChunks = noneOfAnyPart;
    return command;
}

} // namespace

void PrintTo(const Command& command, std::ostream* out) { *out << command.name; }

std::vector<Command> wifiTabCommands()
{
    return {
        setting("WifiSetSSID", kWifiTab, "saveSSIDButton", {{"SSID", "My Net"}}, "8My$Net\0"s),
        setting("WifiSetPassword", kWifiTab, "savePasswordButton", {{"password", "my secret"}}, "9my secret\0"s),
        setting("WifiSetWepKey", kWifiTab, "saveKeyButton", {{"wepKeyField", "0123456789"}}, "b0123456789\0"s),
        setting("WifiSetSecurityType", kWifiTab, "saveSecurityTypeButton", {{kSecurityType, "WPA2"}}, "a\x04"),
        storedText("WifiReadSSID", kWifiTab, "buttonCheckSSID", "c", withSpaces),
        storedText("WifiReadPassword", kWifiTab, "buttonCheckPassword", "d", asItIs),
        connectivityAsRequest(),
        reset("WifiReset", kWifiTab, "buttonResetDevice", "7", "Finished Resetting Device"),
    };
}

std::vector<Command> utilitiesTabCommands()
{
    return {
        powerStatus(),
        adcVersion(),
        connectivity(),
        macAddress(),
        firmwareVersion(),
        wifiFirmwareVersion(),
        reset("ResetModem", kUtilitiesTab, "resetModem", "6", "Finished Resetting Modem"),
        reset("ResetDevice", kUtilitiesTab, "resetDevice", "7", "Finished Resetting Device"),
        setting("SetSSID", kUtilitiesTab, "buttonSetSSID", {{"setSSID", "My Net"}}, "8My$Net\0"s),
        setting("SetPassword", kUtilitiesTab, "buttonSetPassword", {{"setPassword", "$ecret"}}, "9$ecret\0"s),
        storedText("ReadSSID", kUtilitiesTab, "buttonGetSSID", "c", withSpaces),
        storedText("ReadPassword", kUtilitiesTab, "buttonGetNetworkPassword", "d", asItIs),
        setting("SetThrottle", kUtilitiesTab, "buttonSetThrottle", {{"setThrottleTextField", "90"}}, "e<"),
        readThrottle(),
        setTemperatureUnit(),
        readTemperatureUnit(),
    };
}

} // namespace vorrano::device
