#include "web/Reply.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace vorrano::web {

namespace {

using nlohmann::json;

constexpr std::size_t kMiB = std::size_t{1024} * 1024;
constexpr std::size_t kLongestBody = 16 * kMiB;
constexpr std::size_t kMostMemory = 64 * kMiB;
constexpr std::size_t kDeepestNesting = 512;

// In bytes, what a value takes at the most: its place in an array that grows; an array, object or text of its own; an
// object's entry for it. The characters of texts come on top.
constexpr std::size_t kPlace = 32;
constexpr std::size_t kContainer = 64;
constexpr std::size_t kText = 48;
constexpr std::size_t kEntry = 96;

// Reads a body without keeping anything, as far as it is JSON and within the limits. The library's own parser with a
// callback could keep to the limits too, but with each object it looks through all that stand before it.
class SizeGuard : public json::json_sax_t {
public:
    bool null() override { return take(kPlace); }
    bool boolean(bool) override { return take(kPlace); }
    bool number_integer(number_integer_t) override { return take(kPlace); }
    bool number_unsigned(number_unsigned_t) override { return take(kPlace); }
    bool number_float(number_float_t, const string_t&) override { return take(kPlace); }
    bool string(string_t& text) override { return take(kPlace + kText + text.size()); }
    bool binary(binary_t&) override { return false; }
    bool key(string_t& name) override { return take(kEntry + name.size()); }
    bool start_object(std::size_t) override { return begin(); }
    bool start_array(std::size_t) override { return begin(); }
    bool end_object() override { return end(); }
    bool end_array() override { return end(); }
    bool parse_error(std::size_t, const std::string&, const json::exception&) override { return false; }

private:
    bool take(std::size_t bytes)
    {
        m_memory += bytes;
        return m_memory <= kMostMemory;
    }
    bool begin() { return ++m_depth <= kDeepestNesting && take(kPlace + kContainer); }
    bool end()
    {
        --m_depth;
        return true;
    }

    std::size_t m_memory = 0;
    std::size_t m_depth = 0;
};

bool isWithinLimits(const std::string& body)
{
    SizeGuard guard;
    return body.size() <= kLongestBody && json::sax_parse(body, &guard);
}

} // namespace

Reply::Reply(std::shared_ptr<const nlohmann::json> value)
    : m_value(std::move(value))
{}

Reply Reply::parsed(const std::optional<std::string>& body)
{
    if (!body || !isWithinLimits(*body)) {
        return {};
    }
    auto value = json::parse(*body, nullptr, /*allow_exceptions=*/false);
    if (!value.is_object() && !value.is_array()) {
        return {};
    }
    return Reply(std::make_shared<const json>(std::move(value)));
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
