#pragma once

#include "simulator/device/Fault.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorrano::simulator {

// A point of the simulator's own time.
using Moment = std::chrono::nanoseconds;

// What the device keeps when it restarts, and what it knows of itself.
struct Memory {
    std::string ssid = "Not$set"; // as it came: a blank is a "$"
    std::string password = "none";
    std::string wepKey;
    std::uint8_t securityType = 0; // 0, 1, 2, 3, 4 or 8
    std::uint8_t throttle = 40;    // two thirds of the value a person sees
    std::uint8_t unit = 0;         // 0 Fahrenheit, 1 Celsius
    bool connected = false;        // to the network of its SSID
    double fahrenheit = 72.5;      // what its probe measures
    std::string macAddress = "00:1E:5C:0A:1B:2C";
    std::string powerStatus = "USB power";
    std::string adcVersion = "V1.4";
    std::string firmwareVersion = "9.50";
    std::string nextFirmwareVersion = "9.60"; // what any whole image makes of it
    std::size_t firmwareSize = 1000;          // of the image that it runs, in bytes
    std::string wifiFirmwareVersion = "2.36.1";
};

// A piece of what the device says: one write to the line, made when the line's other side has read the piece before,
// and not before `due`.
struct Piece {
    Moment due{0};
    std::string bytes;
    bool hangUpAfter = false;
};

// The last firmware image, each byte with the time at which it came.
struct Image {
    std::string bytes;
    std::vector<Moment> times;
    bool complete = false;
};

// What a Vorrano does with the bytes that come over its cable; the cable itself is somebody else's.
//
// It never looks at a clock: each call says what time it is, and times never go back.
// One thread.
class SimulatedVorrano {
public:
    enum class Mode { Normal, Restarting, Bootloader, Image };

    // How long a restart takes, in which a "b" makes the device stay in its bootloader.
    static constexpr std::chrono::milliseconds kRestartTime{500};
    // An image ends when no byte of it has come for this long.
    static constexpr std::chrono::milliseconds kImageQuiet{1500};
    // A reply that the device itself makes in two steps has this long between them.
    static constexpr std::chrono::milliseconds kStepGap{40};

    SimulatedVorrano() = default;
    explicit SimulatedVorrano(Memory memory);

    void receive(std::string_view bytes, Moment now);

    // Lets what has fallen due happen: the end of a restart or of an image.
    void advance(Moment now);
    [[nodiscard]] std::optional<Moment> nextEvent() const { return m_nextEvent; }

    // What the device wants to say since the last call, in order.
    [[nodiscard]] std::vector<Piece> takeOutput();

    // The cable was pulled: a command or image under way is forgotten.
    void cablePulled();

    void order(const Fault& fault) { m_faults.push_back(fault); }
    void clearFaults();
    // Hangs the line up once `count` more bytes have come.
    void hangUpAfterReceiving(std::size_t count) { m_hangUpIn = count; }

    [[nodiscard]] const Memory& memory() const { return m_memory; }
    void setMemory(const Memory& memory) { m_memory = memory; }
    [[nodiscard]] Mode mode() const { return m_mode; }
    // Running; no command waits for the rest of its argument, and no reply is kept back for the next one.
    [[nodiscard]] bool isIdle() const { return m_mode == Mode::Normal && !m_command && m_keptBack.empty(); }
    [[nodiscard]] const Image& image() const { return m_image; }

    // Every byte that has come since the start or the last clearReceived().
    [[nodiscard]] const std::string& received() const { return m_received; }
    void clearReceived() { m_received.clear(); }

private:
    void receiveByte(char byte, Moment now);
    void beginCommand(char code, Moment now);
    void answerQuery(char code, Moment now);
    void takeTextArgument(char byte, Moment now);
    void takeByteArgument(char byte, Moment now);
    [[nodiscard]] bool store(char code, std::string_view text);
    [[nodiscard]] bool store(char code, std::uint8_t value);
    void bootloaderByte(char byte, Moment now);
    void restart(Moment now);
    void endRestart(Moment now);
    void endImage(Moment now);
    bool reply(char command, std::vector<std::string> steps, Moment now);
    void spoil(const Fault& fault, std::vector<Piece>& pieces);

    Memory m_memory;
    Mode m_mode = Mode::Normal;
    std::optional<char> m_command; // whose argument is awaited
    std::string m_argument;
    bool m_stayInBootloader = false;
    std::optional<Moment> m_nextEvent;
    std::vector<Piece> m_output;
    Image m_image;
    std::string m_received;
    std::vector<Fault> m_faults;
    std::string m_keptBack;
    std::optional<std::size_t> m_hangUpIn;
};

} // namespace vorrano::simulator
