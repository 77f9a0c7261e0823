#include "simulator/device/SimulatedVorrano.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace vorrano::simulator {
namespace {

constexpr std::string_view kAcknowledged = "OK\n\r";
constexpr std::string_view kRefused = "ERROR\n\r";
constexpr std::string_view kLineEnd = "\n\r";
constexpr std::string_view kTextEnd = "\n\n\r";
constexpr std::string_view kStartUpText = "Up\n\r";
constexpr std::size_t kLongestText = 256;
constexpr std::string_view kNoNetwork = "Not$set";

bool takesText(char code) { return code == '8' || code == '9' || code == 'b'; }
bool takesByte(char code) { return code == 'a' || code == 'e' || code == 'g'; }

std::string joined(const std::vector<Piece>& pieces)
{
    return std::accumulate(pieces.begin(), pieces.end(), std::string(),
                           [](std::string all, const Piece& piece) { return std::move(all) + piece.bytes; });
}

std::string operator+(std::string text, std::string_view end) { return text.append(end); }

// Cuts the one piece at the offsets.
std::vector<Piece> split(const Piece& whole, std::vector<std::size_t> at)
{
    if (at.empty()) {
        at.resize(whole.bytes.size());
        std::iota(at.begin(), at.end(), std::size_t{0});
    }
    std::sort(at.begin(), at.end());
    at.push_back(whole.bytes.size());
    std::vector<Piece> pieces;
    std::size_t begin = 0;
    for (const auto offset : at) {
        const auto end = std::min(offset, whole.bytes.size());
        if (end > begin) {
            pieces.push_back({whole.due, whole.bytes.substr(begin, end - begin), false});
            begin = end;
        }
    }
    return pieces;
}

} // namespace

SimulatedVorrano::SimulatedVorrano(Memory memory)
    : m_memory(std::move(memory))
{}

void SimulatedVorrano::receive(std::string_view bytes, Moment now)
{
    advance(now);
    for (const char byte : bytes) {
        m_received.push_back(byte);
        receiveByte(byte, now);
        if (m_hangUpIn && --*m_hangUpIn == 0) {
            m_hangUpIn.reset();
            m_output.push_back({now, "", true});
        }
    }
}

void SimulatedVorrano::receiveByte(char byte, Moment now)
{
    switch (m_mode) {
    case Mode::Normal:
        if (!m_command) {
            beginCommand(byte, now);
        } else if (takesText(*m_command)) {
            takeTextArgument(byte, now);
        } else {
            takeByteArgument(byte, now);
        }
        break;
    case Mode::Restarting:
        m_stayInBootloader = m_stayInBootloader || byte == 'b';
        break;
    case Mode::Bootloader:
        bootloaderByte(byte, now);
        break;
    case Mode::Image:
        m_image.bytes.push_back(byte);
        m_image.times.push_back(now);
        m_nextEvent = now + kImageQuiet;
        break;
    }
}

void SimulatedVorrano::beginCommand(char code, Moment now)
{
    if (takesText(code) || takesByte(code)) {
        m_command = code;
        m_argument.clear();
    } else if (code == '6') {
        m_memory.connected = m_memory.ssid != kNoNetwork;
    } else if (code == '7') {
        restart(now);
    } else {
        answerQuery(code, now);
    }
}

void SimulatedVorrano::answerQuery(char code, Moment now)
{
    const auto& m = m_memory;
    switch (code) {
    case '0':
        reply(code, {m.powerStatus + kLineEnd}, now);
        break;
    case '1':
        reply(code, {"ADC ", m.adcVersion + kLineEnd}, now);
        break;
    case '2':
        if (m.connected) {
            reply(code, {"Connected", std::string(", good signal") + kLineEnd}, now);
        } else {
            reply(code, {"Not connected ", std::string("0") + kLineEnd}, now);
        }
        break;
    case '3':
        reply(code, {m.macAddress + kLineEnd}, now);
        break;
    case '4':
        reply(code, {m.firmwareVersion + kLineEnd}, now);
        break;
    case '5':
        reply(code, {"Wifi " + m.wifiFirmwareVersion + kLineEnd}, now);
        break;
    case 'c':
        reply(code, {m.ssid + kTextEnd}, now);
        break;
    case 'd':
        reply(code, {m.password + kTextEnd}, now);
        break;
    case 'f':
        reply(code, {std::to_string(m.throttle) + kLineEnd}, now);
        break;
    case 'h':
        reply(code, {std::to_string(m.unit) + kLineEnd}, now);
        break;
    default:
        // Line noise and commands that it does not know go unanswered.
        break;
    }
}

void SimulatedVorrano::takeTextArgument(char byte, Moment now)
{
    if (byte != '\0') {
        m_argument.push_back(byte);
        return;
    }
    const char code = *std::exchange(m_command, std::nullopt);
    reply(code, {std::string(store(code, m_argument) ? kAcknowledged : kRefused)}, now);
}

void SimulatedVorrano::takeByteArgument(char byte, Moment now)
{
    const char code = *std::exchange(m_command, std::nullopt);
    reply(code, {std::string(store(code, static_cast<std::uint8_t>(byte)) ? kAcknowledged : kRefused)}, now);
}

bool SimulatedVorrano::store(char code, std::string_view text)
{
    if (text.size() > kLongestText) {
        return false;
    }
    (code == '8' ? m_memory.ssid : code == '9' ? m_memory.password : m_memory.wepKey) = text;
    return true;
}

bool SimulatedVorrano::store(char code, std::uint8_t value)
{
    if (code == 'a' && (value <= 4 || value == 8)) {
        m_memory.securityType = value;
        return true;
    }
    if (code == 'e' && value >= 14 && value <= 60) {
        m_memory.throttle = value;
        return true;
    }
    if (code == 'g' && value <= 1) {
        m_memory.unit = value;
        return true;
    }
    return false;
}

void SimulatedVorrano::bootloaderByte(char byte, Moment now)
{
    if (byte == '7') {
        restart(now);
    } else if (byte == 'u' && reply('u', {"U"}, now)) {
        m_mode = Mode::Image;
        m_image = {};
        m_nextEvent = now + kImageQuiet;
    }
}

void SimulatedVorrano::restart(Moment now)
{
    m_mode = Mode::Restarting;
    m_command.reset();
    m_stayInBootloader = false;
    m_nextEvent = now + kRestartTime;
}

void SimulatedVorrano::endRestart(Moment now)
{
    m_nextEvent.reset();
    if (m_stayInBootloader) {
        m_mode = Mode::Bootloader;
        reply(kPromptCommand, {std::string(1, kPromptCommand)}, now);
        return;
    }
    m_mode = Mode::Normal;
    m_memory.connected = m_memory.ssid != kNoNetwork;
    reply('7', {std::string(kStartUpText)}, now);
}

void SimulatedVorrano::endImage(Moment now)
{
    if (!m_image.bytes.empty()) {
        m_image.complete = true;
        m_memory.firmwareVersion = m_memory.nextFirmwareVersion;
        m_memory.firmwareSize = m_image.bytes.size();
    }
    restart(now);
}

void SimulatedVorrano::advance(Moment now)
{
    while (m_nextEvent && *m_nextEvent <= now) {
        const auto due = *m_nextEvent;
        if (m_mode == Mode::Image) {
            endImage(due);
        } else {
            endRestart(due);
        }
    }
}

std::vector<Piece> SimulatedVorrano::takeOutput() { return std::exchange(m_output, {}); }

void SimulatedVorrano::cablePulled()
{
    m_command.reset();
    m_output.clear();
    m_keptBack.clear();
    m_hangUpIn.reset();
    m_nextEvent.reset();
    m_mode = Mode::Normal;
}

void SimulatedVorrano::clearFaults()
{
    m_faults.clear();
    m_hangUpIn.reset();
}

// Says whether the reply went out as the device meant it.
bool SimulatedVorrano::reply(char command, std::vector<std::string> steps, Moment now)
{
    std::vector<Piece> pieces;
    auto due = now;
    for (auto& step : steps) {
        pieces.push_back({due, std::move(step), false});
        due += kStepGap;
    }
    const auto meant = joined(pieces);
    for (auto& fault : m_faults) {
        if (fault.command.value_or(command) == command && fault.times != 0U) {
            spoil(fault, pieces);
            if (fault.times) {
                --*fault.times;
            }
        }
    }
    std::erase_if(m_faults, [](const Fault& fault) { return fault.times == 0U; });
    if (!pieces.empty() && !m_keptBack.empty()) {
        pieces.front().bytes.insert(0, std::exchange(m_keptBack, {}));
    }
    m_output.insert(m_output.end(), pieces.begin(), pieces.end());
    return joined(pieces) == meant;
}

void SimulatedVorrano::spoil(const Fault& fault, std::vector<Piece>& pieces)
{
    if (pieces.empty()) {
        return;
    }
    Piece whole{pieces.front().due, joined(pieces), false};
    switch (fault.kind) {
    case Fault::Kind::Silence:
        pieces.clear();
        break;
    case Fault::Kind::Delay:
        for (auto& piece : pieces) {
            piece.due += fault.delay;
        }
        break;
    case Fault::Kind::Split:
        pieces = split(whole, fault.at);
        break;
    case Fault::Kind::Merge:
        m_keptBack += whole.bytes;
        pieces.clear();
        break;
    case Fault::Kind::Answer:
        whole.bytes = fault.bytes;
        pieces = {whole};
        break;
    case Fault::Kind::Cut:
        whole.bytes.resize(std::min(fault.count, whole.bytes.size()));
        pieces = {whole};
        break;
    case Fault::Kind::HangUp:
        whole.bytes.resize(std::min(fault.count, whole.bytes.size()));
        whole.hangUpAfter = true;
        pieces = {whole};
        break;
    }
    std::erase_if(pieces, [](const Piece& piece) { return piece.bytes.empty() && !piece.hangUpAfter; });
}

} // namespace vorrano::simulator
