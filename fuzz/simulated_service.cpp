// The simulated web service: heads of requests as they come over the wire, and what it answers to their targets.
#include "fuzz/Check.h"
#include "fuzz/Input.h"
#include "fuzz/Utf8.h"
#include "simulator/service/HttpHead.h"
#include "simulator/service/SimulatedService.h"

#include <nlohmann/json.hpp>

using namespace vorrano;
using fuzz::check;
using simulator::SimulatedService;

namespace {

void checkAnswer(SimulatedService& service, const std::string& target)
{
    const auto method = simulator::methodOfTarget(target);
    check(method.find('/') == std::string::npos, "a method is one segment");
    const auto response = service.answer(target);
    check(response.status == 200 || response.status == 404, "an answer is a page, or there is none");
    if (response.status != 200) {
        check(response.contentType == "text/html", "no page is a page of text");
        return;
    }
    check(!method.empty(), "an answer is that of a method");
    const auto body = nlohmann::json::parse(response.body, nullptr, false);
    check(body.is_object(), "an answer is a JSON object");
    check(body.contains("data") || response.body.find("9.60") == 27, "the version begins at character 27");
    check(fuzz::isUtf8(response.body), "an answer is UTF-8");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    auto wire = fuzz::Input(data, size).rest();
    SimulatedService service;
    service.addAccount({{"AccountLogin", "ada"}, {"Password", "secret1"}, {"Email", "ada@host.example"}});
    while (const auto length = simulator::lengthOfHead(wire)) {
        const auto head = wire.substr(0, *length);
        wire.erase(0, *length);
        check(head.ends_with("\r\n\r\n"), "a head ends with an empty line");
        const auto target = simulator::targetOfHead(head);
        check(target.find(' ') == std::string::npos && target.find("\r\n") == std::string::npos,
              "a target is one word");
        checkAnswer(service, target);
    }
    checkAnswer(service, wire);
    for (const auto& account : service.accounts()) {
        for (const auto& key : SimulatedService::keysInAddressOrder()) {
            check(account.values.contains(key), "an account has all its values");
        }
    }
    return 0;
}
