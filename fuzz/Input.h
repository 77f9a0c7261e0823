#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vorrano::fuzz {

// The bytes of one input, taken from the front. What has ended gives zeros and empty texts.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size)
        : m_rest(reinterpret_cast<const char*>(data), size)
    {}

    [[nodiscard]] bool atEnd() const { return m_rest.empty(); }

    std::uint8_t byte()
    {
        const auto taken = take(1);
        return taken.empty() ? std::uint8_t{0} : static_cast<std::uint8_t>(taken.front());
    }

    // A number from 0 to `limit` - 1.
    std::size_t below(std::size_t limit) { return byte() % limit; }

    // A text of up to 255 bytes, behind the byte that says how many.
    std::string text() { return std::string(take(byte())); }

    // All that is left.
    std::string rest() { return std::string(take(m_rest.size())); }

private:
    std::string_view take(std::size_t length)
    {
        const auto taken = m_rest.substr(0, length);
        m_rest.remove_prefix(taken.size());
        return taken;
    }

    std::string_view m_rest;
};

} // namespace vorrano::fuzz
