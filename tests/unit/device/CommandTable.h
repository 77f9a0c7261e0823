#pragma once

#include "unit/device/DeviceTabTest.h"

#include <cstddef>
#include <ostream>
#include <utility>

// Every command of the device's tabs, and what becomes of each thing that can happen to its reply.
namespace vorrano::device {

using Alerts = std::vector<Alert>;
using Chunks = std::vector<std::string>;

// What a device says when it says something else, nothing that is text, and what it says next.
inline const std::string kGarbage = "\x01?garbage#";
inline const std::string kNoText = "\xFF\xFE\xFD\n\n\r";
inline const std::string kNext = "OK\n\r";

inline const std::string kSecurityType = "securityTypeButton";

enum class Kind {
    Request, // ends with a reply that is long enough or well ended, or after 2 s
    Raw,     // every chunk for itself; nothing ends it
    Reset,   // says that it is finished at once
};

struct Command {
    std::string name;
    std::shared_ptr<DeviceTabController> (*create)() = nullptr;
    std::string button;
    // What the person types, or chooses, before the press.
    std::vector<std::pair<std::string, std::string>> fields = {};
    std::string sent;
    Kind kind = Kind::Request;
    std::string reply;

    // What is shown of the whole reply; of garbage; of what is no text; of the reply run together with the next.
    Alerts answered = {};
    Alerts garbage = {};
    Alerts noText = {};
    Alerts merged = {};

    // Of a request: the shortest beginning of the reply that ends it, and what is shown of a beginning.
    std::size_t enough = 0;
    Alert (*shown)(const std::string& beginning) = nullptr;

    // Of a raw command: what is shown of the reply in these chunks.
    Alerts (*shownOfChunks)(const Chunks& chunks) = nullptr;
};

void PrintTo(const Command& command, std::ostream* out);

[[nodiscard]] std::vector<Command> wifiTabCommands();
[[nodiscard]] std::vector<Command> utilitiesTabCommands();

} // namespace vorrano::device
