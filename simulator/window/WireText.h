#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vorrano::simulator {

// What passes on the line and to the service, for people to read: control characters by name, secrets masked.
//
// It follows the device's command language, chunk by chunk, so as to know which bytes are a password or key.
// One thread.
class WireText {
public:
    // What the program sent; the text of this chunk.
    [[nodiscard]] std::string received(std::string_view bytes);

    // What the device said.
    [[nodiscard]] std::string sent(std::string_view bytes);

    // In the bootloader nothing is a secret, and "b" is no key's command.
    void setInBootloader(bool inBootloader) { m_inBootloader = inBootloader; }

    // A restart is over, or there was none: "b" is a key's command.
    void setRunning() { m_afterReset = false; }

    // The cable was pulled: what was under way is over.
    void cablePulled();

    // The target of a request from its method on, with the segments that are passwords masked.
    [[nodiscard]] static std::string request(std::string_view target);

private:
    // What stands for the next byte of a secret: the whole of it stands as one mask, so that not even its length shows.
    [[nodiscard]] std::string_view maskOnce();

    bool m_inBootloader = false;
    bool m_afterReset = false;
    // Of the text whose end is awaited: whether it is a secret.
    std::optional<bool> m_text;
    bool m_byteAwaited = false;
    // The next reply is a password.
    bool m_secretReply = false;
    bool m_masked = false;
};

} // namespace vorrano::simulator
