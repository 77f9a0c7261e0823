#include "simulator/service/HttpHead.h"

namespace vorrano::simulator {

std::optional<std::size_t> lengthOfHead(std::string_view bytes)
{
    constexpr std::string_view kEnd = "\r\n\r\n";
    const auto end = bytes.find(kEnd);
    return end == std::string_view::npos ? std::nullopt : std::optional(end + kEnd.size());
}

std::string targetOfHead(std::string_view head)
{
    head = head.substr(0, head.find("\r\n"));
    const auto begin = head.find(' ') + 1;
    return std::string(head.substr(begin, head.find(' ', begin) - begin));
}

std::string methodOfTarget(std::string_view target)
{
    if (!target.starts_with(kServiceRoot)) {
        return {};
    }
    target.remove_prefix(kServiceRoot.size());
    return std::string(target.substr(0, target.find('/')));
}

} // namespace vorrano::simulator
