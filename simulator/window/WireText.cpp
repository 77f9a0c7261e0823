#include "simulator/window/WireText.h"

#include "simulator/service/HttpHead.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace vorrano::simulator {
namespace {

constexpr std::string_view kMask = "\u2022\u2022\u2022\u2022";
constexpr std::ptrdiff_t kAccountSegments = 12;

std::string named(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    switch (c) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\0':
        return "\\0";
    default:
        break;
    }
    if (byte >= 0x20 && byte < 0x7F) {
        return {c};
    }
    constexpr std::string_view digits = "0123456789ABCDEF";
    return {'<', digits[byte >> 4U], digits[byte & 0xFU], '>'};
}

// Which of `count` segments after the method's name are passwords, or may be a part of one that has a slash in it.
bool isSecret(std::string_view method, std::size_t segment, std::ptrdiff_t count)
{
    if (method == "validateLogin") {
        return segment >= 1;
    }
    if (method != "insertAccount" && method != "getAccounts") {
        return false;
    }
    return segment == 2 || segment >= 11 || (segment > 2 && count > kAccountSegments);
}

} // namespace

std::string WireText::received(std::string_view bytes)
{
    std::string text;
    for (const char byte : bytes) {
        if (m_inBootloader) {
            text += named(byte);
        } else if (m_text) {
            text += *m_text && byte != '\0' ? std::string(maskOnce()) : named(byte);
            if (byte == '\0') {
                m_text.reset();
            }
        } else if (m_byteAwaited) {
            text += named(byte);
            m_byteAwaited = false;
        } else {
            text += named(byte);
            const bool entersBootloader = m_afterReset && byte == 'b';
            if (byte == '8' || byte == '9' || (byte == 'b' && !entersBootloader)) {
                m_text = byte != '8';
                m_masked = false;
            }
            m_byteAwaited = byte == 'a' || byte == 'e' || byte == 'g';
            m_secretReply = byte == 'd';
            m_masked = m_masked && !m_secretReply;
            m_afterReset = byte == '7';
        }
    }
    return text;
}

std::string WireText::sent(std::string_view bytes)
{
    std::string text;
    for (const char byte : bytes) {
        const bool lineEnd = byte == '\n' || byte == '\r';
        text += m_secretReply && !lineEnd ? std::string(maskOnce()) : named(byte);
        m_secretReply = m_secretReply && byte != '\r';
    }
    return text;
}

std::string_view WireText::maskOnce() { return std::exchange(m_masked, true) ? std::string_view() : kMask; }

void WireText::cablePulled() { *this = WireText(); }

std::string WireText::request(std::string_view target)
{
    if (target.substr(0, kServiceRoot.size()) != kServiceRoot) {
        return std::string(target);
    }
    const auto path = target.substr(kServiceRoot.size());
    const auto method = path.substr(0, path.find('/'));
    const auto count = std::count(path.begin(), path.end(), '/');
    std::string text(method);
    std::size_t segment = 0;
    for (auto rest = path.substr(method.size()); !rest.empty(); ++segment) {
        rest.remove_prefix(1);
        const auto value = rest.substr(0, rest.find('/'));
        text += '/';
        text += isSecret(method, segment, count) && !value.empty() ? kMask : value;
        rest.remove_prefix(value.size());
    }
    return text;
}

} // namespace vorrano::simulator
