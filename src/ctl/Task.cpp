#include "ctl/Task.h"

#include "ctl/IntelHex.h"
#include "device/DeviceTexts.h"
#include "device/DeviceValues.h"
#include "device/FirmwareImage.h"
#include "device/NetworkInput.h"
#include "device/UtilitiesTexts.h"
#include "device/WifiTexts.h"
#include "text/Text.h"

#include <algorithm>
#include <array>
#include <exception>
#include <utility>

namespace vorrano::ctl {

using device::DeviceCommand;

namespace {

using Refusal = std::optional<std::string_view>;
using Made = std::variant<Exchange, Answer>;

constexpr std::string_view kPasswordPrompt = "Network password: ";
constexpr std::string_view kKeyPrompt = "WEP key: ";

constexpr std::array kQuestions = std::to_array<std::pair<std::string_view, DeviceCommand>>({
    {"power", DeviceCommand::PowerStatus},
    {"adc", DeviceCommand::AdcVersion},
    {"connection", DeviceCommand::ConnectivityStatus},
    {"mac", DeviceCommand::MacAddress},
    {"firmware", DeviceCommand::FirmwareVersion},
    {"wifi-firmware", DeviceCommand::WifiFirmwareVersion},
    {"ssid", DeviceCommand::ReadSSID},
    {"password", DeviceCommand::ReadPassword},
    {"throttle", DeviceCommand::ReadThrottle},
    {"unit", DeviceCommand::ReadTemperatureUnit},
});

std::string lowerCase(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return lower;
}

// As device::numberOf(), in whatever case the name was typed.
std::optional<std::uint16_t> numberOfTyped(const device::NamedNumbers& names, std::string_view typed)
{
    for (const auto& [name, number] : names) {
        if (lowerCase(name) == lowerCase(typed)) {
            return number;
        }
    }
    return std::nullopt;
}

std::string namesOf(const device::NamedNumbers& names)
{
    std::string all;
    for (const auto& [name, number] : names) {
        all += (all.empty() ? "" : ", ") + name;
    }
    return all;
}

Made exchangeUnless(const Refusal& refused, Exchange exchange)
{
    return refused ? Made(refusal(*refused)) : Made(std::move(exchange));
}

Made ssidOf(const std::string& typed)
{
    const auto ssid = text::textFromUtf8(typed);
    if (!ssid) {
        return refusal("The network name is no UTF-8 text.");
    }
    return exchangeUnless(device::refusalOfSSID(*ssid),
                          {"ssid", DeviceCommand::SetSSID, device::replaceSSIDSpacesWithDollarSign(*ssid)});
}

Made securityOf(std::optional<std::uint16_t> number)
{
    if (!number) {
        return refusal(std::string(device::wifi_text::kNoSecurityType) + ": " + namesOf(device::securityTypes()));
    }
    return Exchange{"security", DeviceCommand::SetSecurityType, device::characterOfLow16Bits(*number)};
}

Made throttleOf(const std::string& typed)
{
    const auto throttle = device::throttleOf(typed);
    if (!throttle) {
        return refusal(std::string(device::utilities_text::kInvalidThrottle) + ": " +
                       std::string(device::utilities_text::kThrottleRange));
    }
    return Exchange{"throttle", DeviceCommand::SetThrottle,
                    device::characterOfLow8Bits(device::storedThrottle(*throttle))};
}

Made unitOf(const std::string& typed)
{
    const auto unit = numberOfTyped(device::temperatureUnits(), typed);
    if (!unit) {
        return refusal("Please select a temperature unit: " + namesOf(device::temperatureUnits()));
    }
    return Exchange{"unit", DeviceCommand::SetTemperatureUnit, device::characterOfLow16Bits(*unit)};
}

using RefusalOf = Refusal (*)(std::string_view secret);

Made secretOf(const SecretSource& source, const ReadSecret& readSecret, Exchange exchange, RefusalOf refusalOfSecret)
{
    auto secret = readSecret(source);
    if (std::holds_alternative<Answer>(secret)) {
        return std::get<Answer>(std::move(secret));
    }
    exchange.argument = std::get<std::string>(std::move(secret));
    const auto refused = refusalOfSecret(exchange.argument);
    return exchangeUnless(refused, std::move(exchange));
}

Made wepKeyFrom(const Arguments& arguments, const ReadSecret& readSecret)
{
    return secretOf({arguments.passwordFile, kKeyPrompt}, readSecret, {"wep-key", DeviceCommand::SetWepKey, ""},
                    device::refusalOfWepKey);
}

Made passwordFrom(const Arguments& arguments, const ReadSecret& readSecret, RefusalOf refusalOfPassword)
{
    return secretOf({arguments.passwordFile, kPasswordPrompt}, readSecret, {"password", DeviceCommand::SetPassword, ""},
                    refusalOfPassword);
}

// All of them, or the first refusal.
std::variant<Task, Answer> taskOfAll(std::vector<Made> made)
{
    Exchanges all;
    for (auto& one : made) {
        if (std::holds_alternative<Answer>(one)) {
            return std::get<Answer>(std::move(one));
        }
        all.exchanges.push_back(std::get<Exchange>(std::move(one)));
    }
    return Task(std::move(all));
}

std::variant<Task, Answer> question(const std::string& item)
{
    const auto found =
        std::find_if(kQuestions.begin(), kQuestions.end(), [&](const auto& one) { return one.first == item; });
    if (found == kQuestions.end()) {
        return refusal("There is no '" + item + "' to get.");
    }
    return Task(Exchanges{{{item, found->second, ""}}});
}

std::variant<Task, Answer> settingOfSecret(const Arguments& arguments, const ReadSecret& readSecret)
{
    if (arguments.operands.size() > 1) {
        return refusal("A secret is never taken from an argument, as others can read it there. Use --password-file, or "
                       "let the terminal ask.");
    }
    return taskOfAll({arguments.operands.front() == "wep-key"
                          ? wepKeyFrom(arguments, readSecret)
                          : passwordFrom(arguments, readSecret, device::refusalOfUtilitiesTabPassword)});
}

std::variant<Task, Answer> setting(const Arguments& arguments, const ReadSecret& readSecret)
{
    const auto& item = arguments.operands.front();
    if (item == "password" || item == "wep-key") {
        return settingOfSecret(arguments, readSecret);
    }
    if (item != "ssid" && item != "security" && item != "throttle" && item != "unit") {
        return refusal("There is no '" + item + "' to set.");
    }
    if (arguments.passwordFile) {
        return refusal("--password-file goes with 'password' and 'wep-key' only.");
    }
    if (arguments.operands.size() < 2) {
        return refusal("'set " + item + "' needs a value.");
    }
    const auto& value = arguments.operands[1];
    if (item == "ssid") {
        return taskOfAll({ssidOf(value)});
    }
    if (item == "security") {
        return taskOfAll({securityOf(numberOfTyped(device::securityTypes(), value))});
    }
    return taskOfAll({item == "throttle" ? throttleOf(value) : unitOf(value)});
}

std::variant<Task, Answer> network(const Arguments& arguments, const ReadSecret& readSecret)
{
    if (!arguments.ssid || !arguments.security) {
        return refusal("'wifi' needs --ssid and --security.");
    }
    const auto number = numberOfTyped(device::securityTypes(), *arguments.security);
    std::vector<Made> made{ssidOf(*arguments.ssid), securityOf(number)};
    const auto isRefused = [](const Made& one) { return std::holds_alternative<Answer>(one); };
    if (std::any_of(made.begin(), made.end(), isRefused)) {
        // Nobody types a password for what is refused anyway.
        return taskOfAll(std::move(made));
    }
    if (*number == device::kOpenNetwork) {
        if (arguments.passwordFile) {
            return refusal("An open network has no password.");
        }
    } else if (device::hasWepKey(number)) {
        made.push_back(wepKeyFrom(arguments, readSecret));
    } else {
        made.push_back(passwordFrom(arguments, readSecret, device::refusalOfWifiTabPassword));
    }
    return taskOfAll(std::move(made));
}

std::variant<Task, Answer> resetOf(const std::string& item)
{
    if (item == "device") {
        return Task(Reset{item, DeviceCommand::ResetDevice, device::device_text::kFinishedResettingDevice});
    }
    if (item == "modem") {
        return Task(Reset{item, DeviceCommand::ResetModem, device::utilities_text::kFinishedResettingModem});
    }
    return refusal("There is no '" + item + "' to reset.");
}

std::variant<Task, Answer> upload(const Arguments& arguments)
{
    std::optional<std::string> image;
    try {
        image = device::readFirmwareImage(arguments.operands.front());
    } catch (const std::exception&) {
        return refusal("The firmware image can't be read.");
    }
    if (!image) {
        // As UTF-8 it is sent as nothing, with force too.
        return refusal("The firmware image is no text file.");
    }
    if (const auto fault = arguments.force ? std::nullopt : faultOfIntelHex(*image)) {
        return refusal("The firmware image is no Intel HEX file: " + *fault + ". --force sends it all the same.");
    }
    return Task(Upload{*std::move(image)});
}

} // namespace

std::variant<Task, Answer> taskOf(const Arguments& arguments, const ReadSecret& readSecret)
{
    switch (arguments.verb) {
    case Verb::List:
        break;
    case Verb::Get:
        return question(arguments.operands.front());
    case Verb::Set:
        return setting(arguments, readSecret);
    case Verb::Wifi:
        return network(arguments, readSecret);
    case Verb::Reset:
        return resetOf(arguments.operands.front());
    case Verb::Update:
        return upload(arguments);
    }
    return Task(ListPorts{});
}

Secret secretOfLine(std::string_view bytes)
{
    if (bytes.ends_with('\n')) {
        bytes.remove_suffix(1);
    }
    if (bytes.ends_with('\r')) {
        bytes.remove_suffix(1);
    }
    if (bytes.find('\n') != std::string_view::npos) {
        return refusal("The secret has more than one line.");
    }
    auto secret = text::textFromUtf8(bytes);
    if (!secret || secret->find('\0') != std::string::npos) {
        return refusal("The secret is no UTF-8 text.");
    }
    return *std::move(secret);
}

} // namespace vorrano::ctl
