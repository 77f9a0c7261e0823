// Reading what the web service answered, along a path that the input chooses.
#include "fuzz/Check.h"
#include "fuzz/Input.h"
#include "fuzz/Utf8.h"
#include "web/Reply.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include <nlohmann/json.hpp>

using namespace vorrano;
using fuzz::check;
using nlohmann::json;
using web::Reply;

namespace {

constexpr std::array kKeys{"data", "Id", "Password", ""};
constexpr std::size_t kDeepestNesting = 512;

std::size_t depthOf(const json& value)
{
    std::size_t deepest = 0;
    for (const auto& inner : value) {
        deepest = std::max(deepest, inner.is_structured() ? depthOf(inner) : 0);
    }
    return deepest + 1;
}

// The reader of a reply and the same value in a JSON library's hands; null stands for none.
struct Place {
    Reply reply;
    const json* value;
};

bool leadsNowhere(const json& value, bool isKey, std::size_t which)
{
    return isKey ? !value.is_object() : !value.is_array() || which >= value.size();
}

// One step for both; false when it throws.
bool step(Place& place, bool isKey, std::size_t which)
{
    const auto* const key = kKeys[which % kKeys.size()];
    const bool throws = place.value != nullptr && leadsNowhere(*place.value, isKey, which);
    try {
        place.reply = isKey ? place.reply.key(key) : place.reply.at(which);
    } catch (const web::ReplyError&) {
        check(throws, "a step throws where there is nothing of that kind");
        return false;
    }
    check(!throws, "a step leads to what is there");
    if (place.value != nullptr) {
        const auto found = isKey ? place.value->find(key) : place.value->begin() + static_cast<std::ptrdiff_t>(which);
        place.value = found == place.value->end() ? nullptr : &*found;
    }
    check(place.reply.isNull() == (place.value == nullptr), "a missing key is null");
    return true;
}

void checkText(const Place& place)
{
    const bool throws = place.value != nullptr && !place.value->is_string();
    try {
        const auto text = place.reply.text();
        check(!throws, "only a text is read as one");
        check(text.has_value() == (place.value != nullptr), "null has no text");
        check(!text || *text == place.value->get<std::string>(), "the text is the service's");
        check(!text || fuzz::isUtf8(*text), "the text is UTF-8");
    } catch (const web::ReplyError&) {
        check(throws, "a text is read");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    std::array<std::size_t, 8> path{};
    std::generate(path.begin(), path.end(), [&] { return input.byte(); });
    const auto body = input.rest();
    const auto value = json::parse(body, nullptr, /*allow_exceptions=*/false);
    const auto reply = Reply::parsed(body);
    const bool isReply = value.is_structured() && depthOf(value) <= kDeepestNesting;
    check(reply.isNull() != isReply, "a reply is an object or an array, and not nested too deeply");

    Place place{reply, isReply ? &value : nullptr};
    checkText(place);
    for (std::size_t i = 0; i < path.size() && step(place, path[i] % 2 == 0, path[i + 1]); i += 2) {
        checkText(place);
    }
    return 0;
}
