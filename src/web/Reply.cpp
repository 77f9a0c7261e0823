#include "web/Reply.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace vorrano::web {

namespace {

using nlohmann::json;
using Event = json::parse_event_t;

constexpr std::size_t kMiB = std::size_t{1024} * 1024;
constexpr std::size_t kLongestBody = 16 * kMiB;
constexpr std::size_t kMostMemory = 64 * kMiB;
constexpr int kDeepestNesting = 512;

// In bytes, what a value takes at the most: its place in an array that grows; an array, object or text of its own; an
// object's entry for it. The characters of texts come on top.
constexpr std::size_t kPlace = 32;
constexpr std::size_t kContainer = 64;
constexpr std::size_t kText = 48;
constexpr std::size_t kEntry = 96;

struct TooLarge {};

std::size_t memoryOf(Event event, const json& value)
{
    const auto* const text = value.get_ptr<const std::string*>();
    const auto length = text == nullptr ? 0 : text->size();
    switch (event) {
    case Event::object_start:
    case Event::array_start:
        return kPlace + kContainer;
    case Event::key:
        return kEntry + length;
    case Event::value:
        return kPlace + (text == nullptr ? 0 : kText) + length;
    default:
        return 0;
    }
}

} // namespace

Reply::Reply(std::shared_ptr<const nlohmann::json> value)
    : m_value(std::move(value))
{}

Reply Reply::parsed(const std::optional<std::string>& body)
{
    if (!body || body->size() > kLongestBody) {
        return {};
    }
    std::size_t memory = 0;
    const auto guardSize = [&memory](int depth, Event event, const json& value) {
        memory += memoryOf(event, value);
        const bool begins = event == Event::object_start || event == Event::array_start;
        if ((begins && depth >= kDeepestNesting) || memory > kMostMemory) {
            throw TooLarge();
        }
        return true;
    };
    try {
        auto value = json::parse(*body, guardSize, /*allow_exceptions=*/false);
        if (!value.is_object() && !value.is_array()) {
            return {};
        }
        return Reply(std::make_shared<const json>(std::move(value)));
    } catch (const TooLarge&) {
        return {};
    }
}

Reply Reply::key(std::string_view name) const
{
    if (!m_value) {
        return {};
    }
    if (!m_value->is_object()) {
        throw ReplyError("A key was asked of a value that is no object");
    }
    const auto found = m_value->find(name);
    if (found == m_value->end()) {
        return {};
    }
    return Reply(std::shared_ptr<const nlohmann::json>(m_value, &*found));
}

Reply Reply::at(std::size_t index) const
{
    if (!m_value) {
        return {};
    }
    if (!m_value->is_array()) {
        throw ReplyError("An index was asked of a value that is no array");
    }
    if (index >= m_value->size()) {
        throw ReplyError("An index was asked past an array's end");
    }
    return Reply(std::shared_ptr<const nlohmann::json>(m_value, &(*m_value)[index]));
}

std::optional<std::string> Reply::text() const
{
    if (!m_value) {
        return std::nullopt;
    }
    if (!m_value->is_string()) {
        throw ReplyError("A text was asked of a value that is none");
    }
    return m_value->get<std::string>();
}

} // namespace vorrano::web
