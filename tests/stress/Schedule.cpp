#include "stress/Schedule.h"

#include <algorithm>
#include <functional>
#include <random>

namespace vorrano::stress {

namespace {

using Dice = std::mt19937_64;

std::uint64_t hashOf(const std::string& text)
{
    std::uint64_t hash = 14695981039346656037ULL;
    for (const auto letter : text) {
        hash = mixed(hash, static_cast<unsigned char>(letter));
    }
    return hash;
}

std::uint64_t draw(Dice& dice, std::uint64_t below) { return dice() % below; }

Milliseconds drawTime(Dice& dice, std::uint64_t least, std::uint64_t below)
{
    return Milliseconds(least + draw(dice, below - least));
}

Step nextStep(Dice& dice, std::size_t port, Milliseconds now)
{
    Step step{now, port, Fault::SendFromMain, Milliseconds(0), static_cast<std::uint32_t>(dice())};
    const auto kind = draw(dice, 100);
    if (kind < 35) {
        step.fault = Fault::CloseAndReopen;
        step.lasts = drawTime(dice, 0, 150);
    } else if (kind < 40) {
        step.fault = Fault::CloseForLong;
        step.lasts = Milliseconds(1000);
    } else if (kind < 55) {
        step.fault = Fault::FlipFlowControl;
    } else if (kind < 70) {
        step.fault = Fault::ChangeBaudRate;
    } else if (kind < 80) {
        step.fault = Fault::ChangeParity;
    } else if (kind < 90) {
        step.fault = Fault::HangUp;
        step.lasts = drawTime(dice, 50, 400);
    }
    return step;
}

} // namespace

std::uint64_t mixed(std::uint64_t hash, std::uint64_t value)
{
    constexpr std::uint64_t kPrime = 1099511628211ULL;
    return (hash ^ value) * kPrime;
}

std::vector<Step> scheduleOf(std::uint64_t seed, std::size_t ports, Milliseconds duration)
{
    std::vector<Step> schedule;
    for (std::size_t port = 0; port < ports; ++port) {
        Dice dice(mixed(seed, port + 1));
        for (auto at = drawTime(dice, 0, 500); at < duration;) {
            schedule.push_back(nextStep(dice, port, at));
            at += schedule.back().lasts + drawTime(dice, 20, 600);
        }
    }
    const auto earlier = [](const Step& left, const Step& right) { return left.at < right.at; };
    std::stable_sort(schedule.begin(), schedule.end(), earlier);
    return schedule;
}

std::uint64_t fingerprint(const std::vector<Step>& schedule)
{
    std::uint64_t hash = 14695981039346656037ULL;
    for (const auto& step : schedule) {
        for (const auto value : {static_cast<std::uint64_t>(step.at.count()), static_cast<std::uint64_t>(step.port),
                                 static_cast<std::uint64_t>(step.fault), static_cast<std::uint64_t>(step.lasts.count()),
                                 std::uint64_t{step.draw}}) {
            hash = mixed(hash, value);
        }
    }
    return hash;
}

Answer answerTo(std::uint64_t seed, std::size_t port, const std::string& request, std::size_t length,
                Milliseconds limit)
{
    Dice dice(mixed(mixed(seed, port + 1), hashOf(request)));
    Answer answer;
    const auto kind = draw(dice, 100);
    answer.silent = kind < 5;
    answer.garbageBefore = kind >= 5 && kind < 15;
    if (kind >= 15 && kind < 45) {
        // About when the time-out comes.
        answer.delay = limit - std::min(limit, Milliseconds(4)) + drawTime(dice, 0, 12);
    } else if (kind >= 45 && kind < 60) {
        answer.delay = drawTime(dice, 0, 20);
    }
    const auto cutChance = draw(dice, 4);
    for (std::size_t at = 1; at < length; ++at) {
        if (cutChance == 0 || draw(dice, length) < cutChance) {
            answer.cuts.push_back(at);
            answer.gaps.push_back(draw(dice, 3) == 0 ? drawTime(dice, 0, 4) : Milliseconds(0));
        }
    }
    return answer;
}

} // namespace vorrano::stress
