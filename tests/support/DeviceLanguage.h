#pragma once

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

// The device's commands and the buttons that send them, to the letter, as tests/support/device_language.json tells
// them. It is the tests' own table, apart from the program's; the end-to-end tests read it as well.
namespace vorrano::support {

// When a reply is whole: so many bytes, with these at the end.
struct ReplyRule {
    std::size_t shortest = 0;
    std::string end;

    [[nodiscard]] bool isWhole(const std::string& received) const
    {
        return received.size() >= shortest && received.ends_with(end);
    }
};

struct LanguageCommand {
    std::string name;
    char code = 0;
    std::string argument; // "none", "free text" or "character"
    std::optional<ReplyRule> reply;
};

// What the person types into a field, or chooses from a list, before the press.
struct FilledField {
    std::string name;
    std::string value;
    bool isList = false;
};

enum class Way {
    Request, // ends with a reply that is whole, or after 2 s
    Raw,     // every chunk for itself; nothing ends it
    Reset,   // says that it is finished at once
};

struct LanguageButton {
    std::string screen;
    std::string button;
    std::vector<FilledField> fields;
    LanguageCommand command;
    std::string sent;
    Way way = Way::Request;
    bool waitingForAck = false;
    // A reply, and the alert that it leads to when it comes in one chunk: message text and informative text.
    std::string answer;
    std::optional<std::pair<std::string, std::string>> shown;

    [[nodiscard]] std::string testName() const { return screen.substr(0, screen.find("View")) + "_" + button; }
};

void PrintTo(const LanguageButton& button, std::ostream* out);

[[nodiscard]] const std::vector<LanguageCommand>& languageCommands();
[[nodiscard]] const std::vector<LanguageButton>& languageButtons();

} // namespace vorrano::support
