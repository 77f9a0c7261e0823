#include "campaign/Cell.h"
#include "campaign/Demo.h"
#include "unit/device/TemporaryFile.h"

#include <charconv>
#include <cstdio>
#include <cstring>
#include <iomanip>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

using namespace vorrano;
using namespace vorrano::campaign;

namespace {

constexpr const char* kUsage = "usage: campaign [--every N] [--action TEXT] [--fault TEXT]\n"
                               "Every action under every fault at every moment, or each Nth of these cells, or those\n"
                               "whose action or fault has TEXT in its name.\n";

struct Choice {
    std::size_t every = 1;
    std::string action;
    std::string fault;
};

std::optional<Choice> choiceOf(int count, char** arguments)
{
    Choice choice;
    for (int at = 1; at + 1 < count; at += 2) {
        const std::string_view name = arguments[at];
        const char* const value = arguments[at + 1];
        if (name == "--every") {
            const auto [end, error] = std::from_chars(value, value + std::strlen(value), choice.every);
            if (error != std::errc() || *end != '\0' || choice.every == 0) {
                return std::nullopt;
            }
        } else if (name == "--action") {
            choice.action = value;
        } else if (name == "--fault") {
            choice.fault = value;
        } else {
            return std::nullopt;
        }
    }
    return count % 2 == 1 ? std::optional(choice) : std::nullopt;
}

void printLegend(const std::vector<Fault>& faults)
{
    std::cout << "Three letters for each fault: it strikes before, during and after the action.\n"
                 "=  as if all were well     t  told as a time-out     -  nothing shown     o  something else\n"
                 "!  not what had to come    .  left out\n\n";
    for (std::size_t i = 0; i < faults.size(); ++i) {
        std::cout << std::setw(3) << i + 1 << " " << faults[i].name << "\n";
    }
    std::cout << "\n" << std::string(20, ' ');
    for (std::size_t i = 0; i < faults.size(); ++i) {
        std::cout << std::setw(4) << std::left << i + 1 << std::right;
    }
    std::cout << std::endl;
}

void print(const Cell& cell)
{
    std::cout << cell.action.name << ", " << cell.fault.name << ", " << nameOf(cell.moment) << ":\n";
    for (const auto& complaint : cell.complaints) {
        std::cout << "    " << complaint << "\n";
    }
}

int run(const Choice& choice)
{
    const device::TemporaryFile image(imageText());
    const auto faults = allFaults();
    printLegend(faults);
    std::vector<Cell> wrong;
    std::size_t number = 0;
    std::size_t cells = 0;
    for (const auto& action : allActions()) {
        if (action.name.find(choice.action) == std::string::npos) {
            continue;
        }
        std::cout << std::setw(20) << std::left << action.name << std::right;
        for (const auto& fault : faults) {
            for (const auto moment : {Moment::Before, Moment::During, Moment::After}) {
                const bool isChosen = fault.name.find(choice.fault) != std::string::npos;
                if (!isChosen || number++ % choice.every != 0) {
                    std::cout << '.';
                    continue;
                }
                auto cell = runCell(action, fault, moment, image.path());
                ++cells;
                std::cout << letterOf(cell) << std::flush;
                if (!cell.complaints.empty()) {
                    wrong.push_back(std::move(cell));
                }
            }
            std::cout << ' ';
        }
        std::cout << std::endl;
    }
    std::cout << "\n" << cells << " cells, " << wrong.size() << " of them not as they had to be\n";
    for (const auto& cell : wrong) {
        print(cell);
    }
    return wrong.empty() && cells > 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    const auto choice = choiceOf(argc, argv);
    if (!choice) {
        std::cerr << kUsage;
        return 2;
    }
    // What the fakes forbid is a fault as well.
    GTEST_FLAG_SET(throw_on_failure, true);
    return run(*choice);
}
