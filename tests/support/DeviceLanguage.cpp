#include "support/DeviceLanguage.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace vorrano::support {

namespace {

using Json = nlohmann::json;

const Json& table()
{
    static const Json read = [] {
        std::ifstream file(VORRANO_DEVICE_LANGUAGE);
        return Json::parse(file);
    }();
    return read;
}

LanguageCommand commandOf(const Json& json)
{
    LanguageCommand command{json.at("name"), json.at("code").get<std::string>().at(0), json.at("argument"), {}};
    if (const auto& reply = json.at("reply"); !reply.is_null()) {
        command.reply = ReplyRule{reply.at("shortest"), reply.at("end")};
    }
    return command;
}

const LanguageCommand& commandNamed(const std::string& name)
{
    const auto& all = languageCommands();
    const auto found = std::find_if(all.begin(), all.end(), [&](const auto& command) { return command.name == name; });
    if (found == all.end()) {
        throw std::logic_error("the table has no command named " + name);
    }
    return *found;
}

Way wayOf(const std::string& name)
{
    if (name == "request") {
        return Way::Request;
    }
    if (name == "raw") {
        return Way::Raw;
    }
    if (name == "reset") {
        return Way::Reset;
    }
    throw std::logic_error("the table has no way named " + name);
}

LanguageButton buttonOf(const Json& json)
{
    LanguageButton button;
    button.screen = json.at("screen");
    button.button = json.at("button");
    for (const auto& filled : json.value("fields", Json::array())) {
        const bool isList = filled.contains("list");
        button.fields.push_back({filled.at(isList ? "list" : "field"), filled.at("value"), isList});
    }
    button.command = commandNamed(json.at("command"));
    button.sent = json.at("sent");
    button.way = wayOf(json.at("way"));
    button.waitingForAck = json.value("waitingForAck", false);
    button.answer = json.at("answer");
    if (const auto& shown = json.at("shown"); !shown.is_null()) {
        button.shown = std::pair(shown.at(0).get<std::string>(), shown.at(1).get<std::string>());
    }
    return button;
}

} // namespace

void PrintTo(const LanguageButton& button, std::ostream* out) { *out << button.testName(); }

const std::vector<LanguageCommand>& languageCommands()
{
    static const std::vector<LanguageCommand> all = [] {
        std::vector<LanguageCommand> read;
        for (const auto& json : table().at("commands")) {
            read.push_back(commandOf(json));
        }
        return read;
    }();
    return all;
}

const std::vector<LanguageButton>& languageButtons()
{
    static const std::vector<LanguageButton> all = [] {
        std::vector<LanguageButton> read;
        for (const auto& json : table().at("buttons")) {
            read.push_back(buttonOf(json));
        }
        return read;
    }();
    return all;
}

} // namespace vorrano::support
