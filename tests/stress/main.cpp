#include "serial_pty/rig/PtyWorld.h"
#include "stress/Run.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstring>
#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

using namespace vorrano;

namespace {

constexpr const char* kUsage =
    "usage: stress_serial [--seconds N] [--seed N] [--ports N] [--senders N] [--break WHAT]\n"
    "Stresses serial ports over ptys; the same seed gives the same schedule of faults.\n"
    "WHAT breaks the layer on purpose, so that the run has to end with an error:\n"
    "drop-evaluation, drop-request, drop-timer or swap-steps.\n";

std::optional<std::uint64_t> numberOf(std::string_view text)
{
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

std::optional<stress::Order> orderOf(int count, char** arguments)
{
    stress::Order order;
    for (int at = 1; at + 1 < count; at += 2) {
        const std::string_view name = arguments[at];
        const auto value = numberOf(arguments[at + 1]);
        const auto breaks = stress::breakOf(arguments[at + 1]);
        if (name == "--break" && breaks) {
            order.breaks = *breaks;
        } else if (!value) {
            return std::nullopt;
        } else if (name == "--seconds") {
            order.duration = std::chrono::seconds(*value);
        } else if (name == "--seed") {
            order.seed = *value;
        } else if (name == "--ports") {
            order.ports = *value;
        } else if (name == "--senders") {
            order.senders = *value;
        } else {
            return std::nullopt;
        }
    }
    return count % 2 == 1 ? std::optional(order) : std::nullopt;
}

int run(const stress::Order& order)
{
    // A sanitizer starts a thread of its own with the program's first: it is counted with those that were there before.
    std::thread([] {}).join();
    const auto files = pty_rig::openFiles();
    const auto threads = pty_rig::threads();
    auto breaches = stress::Run(order).go();
    if (pty_rig::openFiles() != files) {
        breaches.push_back("files left over: " + std::to_string(pty_rig::openFiles()) + ", not " +
                           std::to_string(files));
    }
    if (const auto left = pty_rig::threadsInTheEnd(threads); left != threads) {
        breaches.push_back("threads left over: " + std::to_string(left) + ", not " + std::to_string(threads));
    }
    constexpr std::size_t kShown = 20;
    for (std::size_t at = 0; at < std::min(breaches.size(), kShown); ++at) {
        std::cout << breaches[at] << "\n";
    }
    std::cout << (breaches.empty() ? "all held" : std::to_string(breaches.size()) + " breaches") << std::endl;
    return breaches.empty() ? 0 : 1;
}

} // namespace

int main(int count, char** arguments)
{
    const auto order = orderOf(count, arguments);
    if (!order || order->ports == 0) {
        std::cerr << kUsage;
        return 2;
    }
    try {
        return run(*order);
    } catch (const std::exception& exception) {
        std::cerr << exception.what() << "\n";
        return 1;
    }
}
