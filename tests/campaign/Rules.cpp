#include "campaign/Rules.h"

#include "simulator/device/Fault.h"
#include "simulator/device/SimulatedVorrano.h"

#include <cctype>
#include <cstdlib>
#include <functional>
#include <numeric>

namespace vorrano::campaign {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

constexpr milliseconds kTimeOut{2000};
constexpr milliseconds kCheckPauses{1500};
constexpr milliseconds kSetupDelay{500};
constexpr milliseconds kRestart{500};
constexpr milliseconds kImagePauses{400};
constexpr double kLatestVersion = 9.5;

const Alert kTryAgain = alertOf("ERROR", "Please try again");
const Alert kNoNetwork = alertOf("Wi-Fi not connected", "Please check your connection and try again");
const Alert kPcConnected = question("Does the Vorrano screen display 'PC Connected...' ?");
const Alert kProceed =
    question("You must have downloaded the update file(vorrano.hex) from downloads.vorrano.example downloads before "
             "proceeding. Do you want to proceed with updating the Vorrano Firmware?");
const Alert kNoBootloader = alertOf("Failed to enter bootloader mode", "Error");
const Alert kFinished = alertOf("Finished Updating Firmware", "Success");
const Alert kUpToDate =
    alertOf("Your Vorrano is updated with the latest version. There is no need to update.", "Latest Version Detected");
const Alert kRegistered = alertOf("Success", "Device Successfully Registered. Proceed to WiFi Setup.");
const Alert kNoMac = alertOf("ERROR", "Failed to retrieve Mac Address of the Vorrano. Please try again");
const Alert kSaved = alertOf("Success!", "Account Information Saved Successfully. Proceed to Register Vorrano");
const Alert kNotSaved = alertOf("ERROR", "Failed to Save. Please Try Again");
const Alert kCouldNotConnect = alertOf("Could not connect", "Please try again");

// What a fault does to what goes over the line and comes back.
struct LineEffect {
    // The number of the write that fails, or comes late, from 1 on; 0 when none does.
    std::size_t failingWrite = 0;
    std::size_t lateWrite = 0;
    // No write and no reply passes, and the tab knows that it has no port.
    bool isGone = false;
    // Every write fails, though there is a port.
    bool isClosed = false;
    // What becomes of each reply.
    std::function<Chunks(const Chunks& reply)> heard = [](const Chunks& reply) { return reply; };
    // How much later than usual.
    milliseconds delay{0};
};

std::string joined(const Chunks& chunks) { return std::accumulate(chunks.begin(), chunks.end(), std::string()); }

Chunks bytesOf(const Chunks& reply)
{
    Chunks bytes;
    for (const char byte : joined(reply)) {
        bytes.emplace_back(1, byte);
    }
    return bytes;
}

LineEffect hearing(std::function<Chunks(const Chunks&)> heard) { return {.heard = std::move(heard)}; }

LineEffect effectOf(LineFault fault, Moment moment)
{
    const auto beginning = [](const Chunks& reply) { return Chunks{joined(reply).substr(0, kCutAfter)}; };
    const auto nothing = [](const Chunks&) { return Chunks{}; };
    const std::size_t next = moment == Moment::Before ? 1 : 2;
    switch (fault) {
    case LineFault::Silence:
    case LineFault::Merge:
        return hearing(nothing);
    case LineFault::Split:
        return hearing(bytesOf);
    case LineFault::Garbage:
        return hearing([](const Chunks&) { return Chunks{std::string(simulator::kNonsense)}; });
    case LineFault::Cut:
        return hearing(beginning);
    case LineFault::HangUp:
        return {.isGone = true, .heard = beginning};
    case LineFault::PulledCable:
    case LineFault::LinesGone:
        return {.isGone = true, .heard = nothing};
    case LineFault::ShortDelay:
        return {.delay = kShortDelay};
    case LineFault::LongDelay:
        return {.delay = kLongDelay};
    case LineFault::SlowWrite:
        return {.lateWrite = next, .delay = kSlowWrite};
    case LineFault::WriteFails:
        return {.failingWrite = next};
    case LineFault::HeldByAnother:
        // An open port is ours.
        return {.isClosed = moment == Moment::Before};
    case LineFault::ReadFails:
    case LineFault::WaitFails:
        return {.delay = 300ms};
    case LineFault::LinesUnreadable:
    case LineFault::WritesInParts:
        break;
    }
    return {};
}

// The reply as the request's test lets it through; none when it never does.
std::optional<std::string> answerOf(const Action& action, const Chunks& heard)
{
    std::string sofar;
    for (const auto& chunk : heard) {
        sofar += chunk;
        if (action.isWhole(sofar)) {
            return sofar;
        }
    }
    return std::nullopt;
}

// A request that can't be written stays pending, and those behind it wait, until it times out. The device then gets the
// rest: without the command it makes no sense to it, without the argument it is a command with an empty one.
Outcome afterFailedWrite(const Action& action, std::size_t failing)
{
    Outcome outcome{.alerts = {kTryAgain}, .limit = kTimeOut};
    if (failing == action.writes.size()) {
        return outcome;
    }
    outcome.limit += kTimeOut;
    const bool isUnderstood = failing > 1;
    const auto more = isUnderstood ? action.shown({joined(action.reply)}) : Alerts{kTryAgain};
    outcome.alerts.insert(outcome.alerts.end(), more.begin(), more.end());
    return outcome;
}

Outcome ofRequest(const Action& action, const LineEffect& effect)
{
    if (effect.isClosed) {
        const auto requests = action.writes.size();
        return {.alerts = Alerts(requests, kTryAgain), .limit = kTimeOut * static_cast<int>(requests)};
    }
    if (effect.failingWrite > 0 && effect.failingWrite <= action.writes.size()) {
        return afterFailedWrite(action, effect.failingWrite);
    }
    const auto answer = effect.delay < kTimeOut ? answerOf(action, effect.heard(action.reply)) : std::nullopt;
    if (answer) {
        return {.alerts = action.shown({*answer}), .limit = effect.delay};
    }
    if (effect.isGone) {
        return {.isBusy = true};
    }
    return {.alerts = {kTryAgain}, .limit = kTimeOut};
}

// It is finished whatever happens; a request that could not be written times out all the same.
Outcome ofReset(const Action& action, const LineEffect& effect)
{
    Outcome outcome{.alerts = action.shown({}), .limit = effect.delay < kTimeOut ? effect.delay : 0ms};
    if (effect.isClosed || effect.failingWrite == 1) {
        outcome.alerts.push_back(kTryAgain);
        outcome.limit = kTimeOut;
    }
    return outcome;
}

bool isSentWhole(const Action& action, const LineEffect& effect)
{
    return !effect.isClosed && (effect.failingWrite == 0 || effect.failingWrite > action.writes.size());
}

Outcome ofRaw(const Action& action, const LineEffect& effect)
{
    const auto heard = isSentWhole(action, effect) ? effect.heard(action.reply) : Chunks{};
    return {.alerts = action.shown(heard), .limit = effect.delay};
}

Outcome ofUpload(const LineEffect& effect)
{
    Outcome outcome{.alerts = {kPcConnected, kProceed}, .isBusy = true, .isDone = false};
    outcome.limit = kRestart + 2 * effect.delay;
    // The device restarts, and is not told in time to stay in its bootloader: it greets instead.
    if (effect.failingWrite == 2 || effect.lateWrite == 2) {
        outcome.alerts.push_back(kNoBootloader);
        return outcome;
    }
    if (effect.isClosed || effect.failingWrite == 1) {
        return outcome;
    }
    const auto prompt = effect.heard({">"});
    if (!prompt.empty() && prompt.front() != ">") {
        outcome.alerts.push_back(kNoBootloader);
    }
    if (prompt != Chunks{">"} || effect.isGone) {
        return outcome;
    }
    outcome.alerts.push_back(kFinished);
    outcome.isBusy = false;
    // A device whose consent comes late has given the image up by then.
    outcome.isDone = effect.delay < simulator::SimulatedVorrano::kImageQuiet;
    outcome.limit += kImagePauses;
    return outcome;
}

// What the service's answer is to the check of the versions: a version, or too short to hold one.
std::optional<double> latestVersionOf(ServiceMood mood)
{
    switch (mood) {
    case ServiceMood::Well:
        return kLatestVersion;
    case ServiceMood::Refuses:
    case ServiceMood::Cut:
    case ServiceMood::AnswersNothing:
    case ServiceMood::WrongShape:
        return std::nullopt;
    default:
        // Not there within the pauses, or no number at its place.
        return 0.0;
    }
}

Outcome ofCheck(const Action& action, const LineEffect& effect, ServiceMood mood)
{
    const auto heard = isSentWhole(action, effect) ? effect.heard(action.reply) : Chunks{};
    if (heard.empty()) {
        return {.alerts = {kPcConnected}, .isBusy = true, .limit = effect.delay};
    }
    const auto limit = kCheckPauses + effect.delay;
    const auto latest = latestVersionOf(mood);
    if (!latest) {
        return {.alerts = {kPcConnected}, .isBusy = true, .limit = limit};
    }
    const bool isNumber = std::isdigit(static_cast<unsigned char>(heard.front().front())) != 0;
    const double version = isNumber ? std::strtod(heard.front().c_str(), nullptr) : 0.0;
    return {.alerts = {kPcConnected, version == *latest ? kUpToDate : kProceed}, .limit = limit};
}

// What a body is to a screen that wants a text of its first record.
enum class Body { AsItShouldBe, Null, WrongShape };

Body bodyOf(ServiceMood mood)
{
    switch (mood) {
    case ServiceMood::Well:
    case ServiceMood::Slow:
        return Body::AsItShouldBe;
    case ServiceMood::WrongShape:
    case ServiceMood::Numbers:
        return Body::WrongShape;
    default:
        return Body::Null;
    }
}

milliseconds answerTimeOf(ServiceMood mood)
{
    switch (mood) {
    case ServiceMood::Refuses:
        return 0ms;
    case ServiceMood::Silent:
        return VirtualService::kAnswerTime + 60s;
    case ServiceMood::Slow:
        return VirtualService::kAnswerTime + 5s;
    case ServiceMood::Redirects:
        return 21 * VirtualService::kAnswerTime;
    case ServiceMood::Endless:
        return VirtualService::kAnswerTime + 6s;
    default:
        return VirtualService::kAnswerTime;
    }
}

// No answer at all is as good as one, but for an account's record.
Outcome ofWebCall(Kind kind, ServiceMood mood)
{
    const auto body = bodyOf(mood);
    const bool isRead = body != Body::WrongShape;
    const auto limit = answerTimeOf(mood);
    switch (kind) {
    case Kind::SignIn:
        return {.alerts = isRead ? Alerts{} : Alerts{kCouldNotConnect}, .isDone = isRead, .limit = limit + kSetupDelay};
    case Kind::LoadAccount:
        return {.isDone = body == Body::AsItShouldBe, .limit = limit};
    default:
        return {.alerts = {isRead ? kSaved : kNotSaved}, .limit = limit};
    }
}

Outcome ofRegistration(const Action& action, const LineEffect& effect, ServiceMood mood)
{
    const auto kAsked = kTimeOut + 200ms;
    const bool isAnswered = isSentWhole(action, effect) && effect.delay < kTimeOut;
    if (!isAnswered || !answerOf(action, effect.heard(action.reply))) {
        return {.alerts = {kNoMac}, .limit = kAsked};
    }
    // The main thread hands the question over, and waits for its write.
    const auto held = effect.lateWrite == 1 ? effect.delay : 0ms;
    return {.alerts = {kRegistered}, .limit = held + kAsked + answerTimeOf(mood)};
}

Outcome outcomeOf(const Action& action, const LineEffect& effect, ServiceMood mood)
{
    switch (action.kind) {
    case Kind::Local:
        return {.alerts = action.shown({})};
    case Kind::Request:
        return ofRequest(action, effect);
    case Kind::Reset:
        return ofReset(action, effect);
    case Kind::Raw:
        return ofRaw(action, effect);
    case Kind::Upload:
        return ofUpload(effect);
    case Kind::Check:
        return ofCheck(action, effect, mood);
    case Kind::Register:
        return ofRegistration(action, effect, mood);
    default:
        return ofWebCall(action.kind, mood);
    }
}

} // namespace

Outcome healthyOutcome(const Action& action) { return outcomeOf(action, {}, ServiceMood::Well); }

Outcome expectedOutcome(const Action& action, const Fault& fault, Moment moment)
{
    if (moment == Moment::After) {
        return healthyOutcome(action);
    }
    if (const auto* line = std::get_if<LineFault>(&fault.what)) {
        return outcomeOf(action, usesLine(action) ? effectOf(*line, moment) : LineEffect{}, ServiceMood::Well);
    }
    if (const auto* mood = std::get_if<ServiceMood>(&fault.what)) {
        return outcomeOf(action, {}, *mood);
    }
    const bool asksFirst =
        action.kind == Kind::SignIn || action.kind == Kind::SaveAccount || action.kind == Kind::Register;
    if (moment == Moment::Before && asksFirst) {
        auto outcome = healthyOutcome(action);
        outcome.alerts = {kNoNetwork};
        if (outcome.isDone) {
            outcome.isDone = false;
        }
        return outcome;
    }
    return outcomeOf(action, {}, ServiceMood::Refuses);
}

} // namespace vorrano::campaign
