#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vorrano::web {

// A reply of another shape than the reader asked for. Its text names the shape, never what the service sent.
class ReplyError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What the web service answered, or a value inside it; null when there is none.
//
// Null stands for no answer: reading anything of it gives null again. It is not JSON's own null, which is a value of a
// kind that nothing can be read of.
// Threads: a value; copies share what was parsed, which never changes. Any thread.
class Reply {
public:
    // Null.
    Reply() = default;

    // Null when no bytes came, they are no JSON, or the top level is neither object nor array. So is what no service
    // means: more than 16 MiB, nested deeper than 512, or of so many values that they would take more than 64 MiB.
    [[nodiscard]] static Reply parsed(const std::optional<std::string>& body);

    [[nodiscard]] bool isNull() const { return m_value == nullptr; }

    // The value of a key; null when it is missing, or of null. ReplyError when this is no object.
    [[nodiscard]] Reply key(std::string_view name) const;

    // The value at an index; null of null. ReplyError when this is no array, or past its end.
    [[nodiscard]] Reply at(std::size_t index) const;

    // The text; none of null. ReplyError when this is no text.
    [[nodiscard]] std::optional<std::string> text() const;

private:
    explicit Reply(std::shared_ptr<const nlohmann::json> value);

    std::shared_ptr<const nlohmann::json> m_value;
};

} // namespace vorrano::web
