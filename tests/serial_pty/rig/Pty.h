#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <termios.h>

namespace vorrano::pty_rig {

// A pty: the slave is the device's node, the master what the device does.
//
// Threads: one at a time.
class Pty {
public:
    // std::system_error when none can be made.
    Pty();
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;
    ~Pty();

    [[nodiscard]] const std::string& node() const { return m_node; }
    [[nodiscard]] int master() const { return m_master; }

    // The settings of the line as they are.
    [[nodiscard]] termios settings() const;

    // Bytes for the program; false when the line does not take them all.
    bool send(std::string_view bytes) const;

    // What the program wrote and nobody has taken yet.
    [[nodiscard]] std::string receive() const;

    // The plug is pulled.
    void hangUp();

private:
    int m_master = -1;
    std::string m_node;
};

} // namespace vorrano::pty_rig
