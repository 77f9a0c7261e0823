#include "campaign/Action.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace vorrano::campaign {

using namespace std::string_literals;

namespace {

using Fields = std::vector<std::pair<std::string, std::string>>;

const std::string kMac = "00:1E:5C:0A:1B:2C\n\r";
const Chunks kAcknowledged{"OK\n\r"};

bool endsWith(const std::string& bytes, const std::string& end)
{
    return bytes.size() >= end.size() && std::equal(end.rbegin(), end.rend(), bytes.rbegin());
}

bool hasFourBytes(const std::string& bytes) { return bytes.size() >= 4; }
bool isMacPacket(const std::string& bytes) { return bytes.size() > 18; }
bool isStoredText(const std::string& bytes) { return bytes.size() >= 4 && endsWith(bytes, "\n\n\r"); }
bool isStatus(const std::string& bytes) { return bytes.size() >= 4 && endsWith(bytes, "\n\r"); }

// None of a campaign's replies is UTF-8 beyond ASCII.
std::optional<std::string> textOf(const std::string& bytes)
{
    const bool isAscii = std::all_of(bytes.begin(), bytes.end(), [](char c) { return (c & 0x80) == 0; });
    return isAscii ? std::optional(bytes) : std::nullopt;
}

Alerts asItIs(const Chunks& reply) { return {alertOf(textOf(reply.at(0)), "Success")}; }

Alerts withSpaces(const Chunks& reply)
{
    auto text = textOf(reply.at(0));
    if (text) {
        std::replace(text->begin(), text->end(), '$', ' ');
    }
    return {alertOf(text, "Success")};
}

Alerts throttle(const Chunks& reply)
{
    const double stored = std::strtod(textOf(reply.at(0)).value_or("").c_str(), nullptr);
    return {alertOf(std::to_string(std::lround(stored * 1.5)), "Throttle is displayed")};
}

// Each chunk of so many characters; a shorter one shows nothing.
std::function<Alerts(const Chunks&)> version(std::size_t shortest, const std::string& informativeText)
{
    return [=](const Chunks& chunks) {
        Alerts alerts;
        for (const auto& chunk : chunks) {
            if (textOf(chunk) && chunk.size() >= shortest) {
                alerts.push_back(alertOf(chunk, informativeText));
            }
        }
        return alerts;
    };
}

// The first chunk begins a text, each further one is added to it; it is shown with the first of those without a "0".
std::function<Alerts(const Chunks&)> gathered(const std::string& informativeText)
{
    return [=](const Chunks& chunks) {
        Alerts alerts;
        std::optional<std::string> text;
        for (const auto& chunk : chunks) {
            const auto read = textOf(chunk);
            if (!text) {
                text = read;
                continue;
            }
            text = *text + read.value_or("");
            if (read && read->find("0\n\r") == std::string::npos) {
                alerts.push_back(alertOf(text, informativeText));
                text.reset();
            }
        }
        return alerts;
    };
}

Alerts unit(const Chunks& chunks)
{
    Alerts alerts;
    for (const auto& chunk : chunks) {
        alerts.push_back(alertOf(chunk == "0\n\r"   ? std::optional("Fahrenheit"s)
                                 : chunk == "1\n\r" ? std::optional("Celsius"s)
                                                    : std::nullopt,
                                 ""));
    }
    return alerts;
}

Alerts unitSet(const Chunks& chunks)
{
    Alerts alerts;
    for (const auto& chunk : chunks) {
        if (chunk == "OK\n\r") {
            alerts.push_back(alertOf(chunk, ""));
        }
    }
    return alerts;
}

Action local(const std::string& name, Screen screen, const std::string& button, Alerts alerts)
{
    Action action{.name = name, .screen = screen, .button = button};
    action.shown = [alerts = std::move(alerts)](const Chunks&) { return alerts; };
    return action;
}

Action query(const std::string& name, Screen screen, const std::string& button, const std::string& command,
             const std::string& reply, bool (*isWhole)(const std::string&), Alerts (*shown)(const Chunks&) = asItIs)
{
    return {.name = name,
            .screen = screen,
            .kind = Kind::Request,
            .button = button,
            .writes = {command},
            .reply = {reply},
            .isWhole = isWhole,
            .shown = shown};
}

// The texts are of characters that mean nothing to the device, should it miss the command before them.
Action setting(const std::string& name, Screen screen, const std::string& button, const Fields& fields,
               const Chunks& writes)
{
    return {.name = name,
            .screen = screen,
            .kind = Kind::Request,
            .button = button,
            .fields = fields,
            .writes = writes,
            .reply = kAcknowledged,
            .isWhole = hasFourBytes,
            .shown = asItIs};
}

Action raw(const std::string& name, const std::string& button, const Chunks& writes, const Chunks& reply,
           std::function<Alerts(const Chunks&)> shown)
{
    return {.name = name,
            .screen = Screen::Utilities,
            .kind = Kind::Raw,
            .button = button,
            .writes = writes,
            .reply = reply,
            .shown = std::move(shown)};
}

Action reset(const std::string& name, Screen screen, const std::string& button, const std::string& command,
             const std::string& title)
{
    return {.name = name,
            .screen = screen,
            .kind = Kind::Reset,
            .button = button,
            .writes = {command},
            .shown = [title](const Chunks&) { return Alerts{alertOf(title, "Success")}; }};
}

std::vector<Action> cloudActions()
{
    const std::string kHelp2 = "Password must be greater than 5 characters.";
    const std::string kHelp3 = "Guest password must be greater than 5 characters.";
    return {
        {.name = "sign in",
         .screen = Screen::Login,
         .kind = Kind::SignIn,
         .button = "loginButton",
         .fields = {{"accountId", "ada"}, {"password", "secret1"}}},
        {.name = "load account", .screen = Screen::Account, .kind = Kind::LoadAccount},
        {.name = "save account", .screen = Screen::Account, .kind = Kind::SaveAccount, .button = "saveButton"},
        local("help 1", Screen::Account, "helpButton1",
              {alertOf("Help", "The account ID is created by the user. It must be letters and/or numbers with no "
                               "spaces.")}),
        local("help 2", Screen::Account, "helpButton2", {alertOf("Help", kHelp2)}),
        local("help 3", Screen::Account, "helpButton3", {alertOf("Help", kHelp3)}),
        {.name = "register",
         .screen = Screen::Register,
         .kind = Kind::Register,
         .button = "saveButton",
         .fields = {{"vorranoName", "Kitchen"}},
         .writes = {"3"},
         .reply = {kMac},
         .isWhole = isMacPacket},
    };
}

std::vector<Action> wifiActions()
{
    constexpr auto kScreen = Screen::Wifi;
    return {
        local("pick network", kScreen, "buttonScanSSID", {}),
        setting("wifi: set SSID", kScreen, "saveSSIDButton", {{"SSID", "W W"}}, {"8", "W$W", "\0"s}),
        setting("wifi: set type", kScreen, "saveSecurityTypeButton", {{"securityTypeButton", "WPA2"}}, {"a", "\x04"}),
        setting("wifi: set password", kScreen, "savePasswordButton", {{"password", "WWWW"}}, {"9", "WWWW", "\0"s}),
        setting("wifi: set key", kScreen, "saveKeyButton", {{"securityTypeButton", "WEP-128"}, {"wepKeyField", "WWW"}},
                {"b", "WWW", "\0"s}),
        query("wifi: get SSID", kScreen, "buttonCheckSSID", "c", "Not$set\n\n\r", isStoredText, withSpaces),
        query("wifi: get password", kScreen, "buttonCheckPassword", "d", "none\n\n\r", isStoredText),
        query("wifi: connection", kScreen, "buttonCheckNetworkConnection", "2", "Not connected 0\n\r", isStatus),
        reset("wifi: reset", kScreen, "buttonResetDevice", "7", "Finished Resetting Device"),
    };
}

std::vector<Action> utilitiesActions()
{
    constexpr auto kScreen = Screen::Utilities;
    return {
        query("power status", kScreen, "buttonPowerStatus", "0", "USB power\n\r", hasFourBytes),
        query("MAC address", kScreen, "buttonMacAddress", "3", kMac, isMacPacket),
        query("get SSID", kScreen, "buttonGetSSID", "c", "Not$set\n\n\r", isStoredText, withSpaces),
        query("get password", kScreen, "buttonGetNetworkPassword", "d", "none\n\n\r", isStoredText),
        query("get throttle", kScreen, "buttonGetThrottle", "f", "40\n\r", hasFourBytes, throttle),
        raw("ADC version", "buttonADC", {"1"}, {"ADC ", "V1.4\n\r"}, gathered("ADC version number")),
        raw("connectivity", "buttonNetworkConnectivityStatus", {"2"}, {"Not connected ", "0\n\r"},
            gathered("Vorrano is Connected to your WIFI Network")),
        raw("firmware version", "buttonFirmwareVersion", {"4"}, {"9.50\n\r"}, version(6, "Device Firmware Version")),
        raw("wifi firmware", "wifiFirmwareQuery", {"5"}, {"Wifi 2.36.1\n\r"}, version(13, "Wifi Firmware Version")),
        raw("get unit", "buttonGetTemperatureUnit", {"h"}, {"0\n\r"}, unit),
        raw("set unit", "buttonSetTemperatureUnit", {"g", "\x01"}, kAcknowledged, unitSet),
        setting("set SSID", kScreen, "buttonSetSSID", {{"setSSID", "W W"}}, {"8", "W$W", "\0"s}),
        setting("set password", kScreen, "buttonSetPassword", {{"setPassword", "WWWW"}}, {"9", "WWWW", "\0"s}),
        setting("set throttle", kScreen, "buttonSetThrottle", {{"setThrottleTextField", "60"}}, {"e", "\x28"}),
        reset("reset device", kScreen, "resetDevice", "7", "Finished Resetting Device"),
        reset("reset modem", kScreen, "resetModem", "6", "Finished Resetting Modem"),
        {.name = "upload firmware",
         .screen = kScreen,
         .kind = Kind::Upload,
         .button = "buttonUpdateFirmware",
         .writes = {"7", "b"}},
        {.name = "check firmware",
         .screen = kScreen,
         .kind = Kind::Check,
         .button = "buttonUpdateFirmware",
         .writes = {"4"},
         .reply = {"9.50\n\r"}},
    };
}

} // namespace

Alert alertOf(std::optional<std::string> title, std::string text)
{
    return {std::move(title), {"OK"}, std::move(text), platform::AlertStyle::Informational};
}

Alert question(std::string text)
{
    return {std::move(text), {"Yes", "No"}, std::nullopt, platform::AlertStyle::Warning};
}

std::vector<Action> allActions()
{
    auto actions = cloudActions();
    for (const auto& more : {wifiActions(), utilitiesActions()}) {
        actions.insert(actions.end(), more.begin(), more.end());
    }
    return actions;
}

bool usesLine(const Action& action) { return !action.writes.empty(); }

bool usesService(const Action& action)
{
    switch (action.kind) {
    case Kind::SignIn:
    case Kind::LoadAccount:
    case Kind::SaveAccount:
    case Kind::Register:
    case Kind::Check:
        return true;
    default:
        return false;
    }
}

} // namespace vorrano::campaign
