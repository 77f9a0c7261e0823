#include "web/Reply.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace vorrano::web {

namespace {

constexpr int kDeepestNesting = 512;

struct NestedTooDeeply {};

} // namespace

Reply::Reply(std::shared_ptr<const nlohmann::json> value)
    : m_value(std::move(value))
{}

Reply Reply::parsed(const std::optional<std::string>& body)
{
    if (!body) {
        return {};
    }
    using Event = nlohmann::json::parse_event_t;
    const auto guardDepth = [](int depth, Event event, nlohmann::json&) {
        if ((event == Event::object_start || event == Event::array_start) && depth >= kDeepestNesting) {
            throw NestedTooDeeply();
        }
        return true;
    };
    try {
        auto value = nlohmann::json::parse(*body, guardDepth, /*allow_exceptions=*/false);
        if (!value.is_object() && !value.is_array()) {
            return {};
        }
        return Reply(std::make_shared<const nlohmann::json>(std::move(value)));
    } catch (const NestedTooDeeply&) {
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
