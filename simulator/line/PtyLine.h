#pragma once

#include "simulator/device/SimulatedVorrano.h"

#include <QSocketNotifier>
#include <QTimer>

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace vorrano::simulator {

// The cable: a pseudo-terminal whose other side a program opens like a serial port. Pulling it hangs the program's
// side up, plugging it in makes a new one.
//
// What the device says goes out piece by piece: the next one only when the program has read the last. A piece that
// nobody reads for a second is lost, as on a line that nobody has open.
// Threads: the one of the event loop.
class PtyLine {
public:
    struct Listener {
        std::function<void(const std::string& bytes)> received;
        std::function<void(const std::string& bytes)> sent;
        // A piece asked for the cable to be pulled.
        std::function<void()> hangUp;
    };

    explicit PtyLine(Listener listener);
    PtyLine(const PtyLine&) = delete;
    PtyLine& operator=(const PtyLine&) = delete;
    ~PtyLine();

    // Throws std::system_error when no pseudo-terminal can be made.
    void plug();
    void unplug();
    [[nodiscard]] bool isPlugged() const { return m_master >= 0; }

    // The device node of the program's side; empty while the cable is out.
    [[nodiscard]] const std::string& node() const { return m_node; }
    // The rate that the program has set, in baud.
    [[nodiscard]] unsigned baud() const;

    void send(const std::vector<Piece>& pieces);

    // The time on the clock that pieces are due by.
    [[nodiscard]] static Moment now();

private:
    void readyToRead();
    void pump();
    [[nodiscard]] bool lastPieceWasRead();
    void write(const Piece& piece);

    Listener m_listener;
    int m_master = -1;
    // Held open, so that the settings and the line outlive the program's closing of its side.
    int m_slave = -1;
    std::string m_node;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::deque<Piece> m_pieces;
    std::optional<Moment> m_written;
    QTimer m_pump;
};

} // namespace vorrano::simulator
