#include "serial_pty/rig/PtyWorld.h"
#include "soak/Stand.h"
#include "unit/device/TemporaryFile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <exception>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <malloc.h>

using namespace vorrano;
using namespace vorrano::soak;

namespace {

constexpr const char* kUsage =
    "usage: soak [--rounds N]\n"
    "Without an argument 1000 rounds, with nothing else on the computer: all memory is judged then.\n"
    "In each round: 10 times the cable is pulled and plugged in, 100 questions are asked, 1 image is uploaded, and 10\n"
    "tabs are chosen.\n";
constexpr std::size_t kRounds = 1000;
constexpr std::size_t kPlugsOfARound = 10;
constexpr std::size_t kQueriesOfARound = 100;
constexpr std::size_t kTabsOfARound = 10;
constexpr long kMostGrowth = 1024; // KiB
constexpr int kUtilitiesTab = 3;
constexpr std::chrono::seconds kRest{2};
constexpr std::chrono::seconds kLongestRequest{3};

constexpr std::string_view kNoAnswer = "ERROR";

const std::string kImage = ":10000000\r\n:10000010\r\n:00000001\r\n";

// A question, and what answers it.
struct Query {
    const char* button;
    const char* answer;
};
constexpr Query kLastQuery{"buttonGetSSID", "Not set\n\n\r"};
constexpr std::array kQueries{
    Query{"buttonPowerStatus", "USB power\n\r"},
    Query{"buttonMacAddress", "00:1E:5C:0A:1B:2C\n\r"},
    Query{"buttonFirmwareVersion", nullptr},
    Query{"wifiFirmwareQuery", "Wifi 2.36.1\n\r"},
    kLastQuery,
    Query{"buttonGetNetworkPassword", "none\n\n\r"},
    Query{"buttonGetThrottle", "60"},
    Query{"buttonGetTemperatureUnit", "Fahrenheit"},
};

// What the process has at a quiet moment.
struct Measure {
    std::size_t files = 0;
    std::size_t threads = 0;
    long memory = 0; // its proportional set, in KiB
    long own = 0;    // of that, what is no mapped file: its share of those grows when another program ends
};

long memoryOf(std::string_view kind)
{
    std::ifstream file("/proc/self/smaps_rollup");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(kind)) {
            return std::strtol(line.c_str() + kind.size(), nullptr, 10);
        }
    }
    throw std::runtime_error("the memory can't be measured");
}

class Soak {
public:
    Soak(Stand& stand, std::size_t rounds)
        : m_stand(stand)
        , m_rounds(rounds)
        , m_judged(rounds == kRounds ? &Measure::memory : &Measure::own)
    {}

    // The breaches; none when all stayed flat.
    std::vector<std::string> go()
    {
        m_stand.signIn();
        m_stand.plug();
        awaitListed(true);
        print("rounds", "files", "threads", "memory, KiB", "its own, KiB");
        const auto tenth = std::max<std::size_t>(1, m_rounds / 10);
        for (std::size_t round = 1; round <= m_rounds; ++round) {
            oneRound();
            if (round % tenth == 0) {
                take(round, round == tenth);
            }
        }
        if (m_repeated * 100 > m_rounds * kQueriesOfARound) {
            m_breaches.push_back(std::to_string(m_repeated) + " questions had to be repeated");
        }
        return std::move(m_breaches);
    }

private:
    template <class... Cells>
    static void print(const Cells&... cells)
    {
        ((std::cout << std::setw(12) << cells), ...) << std::endl;
    }

    void oneRound()
    {
        for (std::size_t i = 0; i < kTabsOfARound; ++i) {
            m_stand.chooseTab(static_cast<int>(i % 4));
        }
        m_stand.chooseTab(kUtilitiesTab);
        awaitAnswersToTheTabsBefore();
        for (std::size_t i = 0; i < kPlugsOfARound; ++i) {
            m_stand.unplug();
            awaitListed(false);
            m_stand.plug();
            awaitListed(true);
            ask(kQueries.front());
        }
        for (std::size_t i = kPlugsOfARound; i < kQueriesOfARound; ++i) {
            ask(kQueries[i % kQueries.size()]);
        }
        upload();
    }

    void awaitListed(bool listed)
    {
        m_stand.runUntil(listed ? "the Vorrano" : "its removal", [&] { return m_stand.isVorranoListed() == listed; });
    }

    // The answer to a question of a tab that was left comes to the tab on the screen, which shows it. It may even come
    // from the reader of a line that was pulled meanwhile. A port answers one question after the other: with the answer
    // to this one, those before it have ended.
    void awaitAnswersToTheTabsBefore()
    {
        m_stand.press(kLastQuery.button);
        const auto last = [&] { return m_stand.alerts().last().messageText.value_or("nothing"); };
        m_stand.runUntil("the answer to the last question",
                         [&] { return isAnswer(last(), kLastQuery) || last() == kNoAnswer; });
        if (last() == kNoAnswer) {
            ++m_repeated;
            awaitQuiet();
        }
    }

    // A chunk is reported before the request queue takes it: a request as quick as this one may get it into its reply,
    // and then runs out of time. Such a question is repeated once all is quiet, which must be rare.
    void ask(const Query& query)
    {
        auto text = m_stand.press(query.button).messageText.value_or("nothing");
        if (text == kNoAnswer) {
            ++m_repeated;
            awaitQuiet();
            text = m_stand.press(query.button).messageText.value_or("nothing");
        }
        if (!isAnswer(text, query)) {
            throw std::runtime_error(std::string(query.button) + " shows " + text);
        }
    }

    static bool isAnswer(const std::string& text, const Query& query)
    {
        return query.answer != nullptr ? text.ends_with(query.answer) : text != kNoAnswer;
    }

    // Every request has ended by then.
    void awaitQuiet()
    {
        auto count = m_stand.alerts().count();
        auto since = std::chrono::steady_clock::now();
        m_stand.runUntil("quiet", [&] {
            if (m_stand.alerts().count() != count) {
                count = m_stand.alerts().count();
                since = std::chrono::steady_clock::now();
            }
            return std::chrono::steady_clock::now() - since > kLongestRequest;
        });
    }

    void upload()
    {
        // What the device says afterwards is no answer to this question.
        ask(kQueries[1]);
        m_stand.alerts().queueAnswer(platform::kAlertSecondButton);
        m_stand.alerts().queueAnswer(platform::kAlertFirstButton);
        const auto alert = m_stand.press("buttonUpdateFirmware", 3);
        auto sent = kImage;
        std::erase(sent, '\n');
        // The last characters may be on their way.
        m_stand.runUntil("the whole image", [&] { return m_stand.vorrano().imageSize() >= sent.size(); });
        if (alert.messageText != "Finished Updating Firmware" || m_stand.vorrano().takeImage() != sent) {
            throw std::runtime_error("an upload went wrong: " + alert.messageText.value_or("nothing"));
        }
    }

    // Readers of lines that are gone leave within their round of 100 ms.
    void take(std::size_t round, bool isFirst)
    {
        m_stand.fillThreadPool();
        if (isFirst) {
            const auto rest = std::chrono::steady_clock::now() + kRest;
            m_stand.runUntil("two seconds' rest", [&] { return std::chrono::steady_clock::now() > rest; });
            m_first = measure();
        }
        auto now = measure();
        m_stand.runUntil("as few threads and files as after the first tenth", [&] {
            now = measure();
            return now.threads <= m_first.threads && now.files <= m_first.files;
        });
        print(round, now.files, now.threads, now.memory, now.own);
        if (const auto growth = now.*m_judged - m_first.*m_judged; growth > kMostGrowth) {
            m_breaches.push_back("the memory has grown by " + std::to_string(growth) + " KiB");
        }
    }

    static Measure measure()
    {
        malloc_trim(0);
        return {pty_rig::openFiles(), pty_rig::threads(), memoryOf("Pss:"), memoryOf("Pss_Anon:")};
    }

    Stand& m_stand;
    std::size_t m_rounds;
    long Measure::*m_judged;
    Measure m_first;
    std::size_t m_repeated = 0;
    std::vector<std::string> m_breaches;
};

std::optional<std::size_t> roundsOf(int count, char** arguments)
{
    std::size_t rounds = kRounds;
    if (count == 1) {
        return rounds;
    }
    if (count != 3 || std::string_view(arguments[1]) != "--rounds") {
        return std::nullopt;
    }
    const char* const text = arguments[2];
    const auto [end, error] = std::from_chars(text, text + std::strlen(text), rounds);
    return error == std::errc() && *end == '\0' && rounds > 0 ? std::optional(rounds) : std::nullopt;
}

int run(int argc, char** argv, std::size_t rounds)
{
    const device::TemporaryFile image(kImage);
    Stand stand(argc, argv, image.path());
    const auto breaches = Soak(stand, rounds).go();
    for (const auto& breach : breaches) {
        std::cout << breach << "\n";
    }
    std::cout << (breaches.empty() ? "all flat" : "not flat") << " after " << rounds * kPlugsOfARound
              << " plug cycles, " << rounds * kQueriesOfARound << " questions, " << rounds << " uploads and "
              << rounds * kTabsOfARound << " choices of a tab" << std::endl;
    return breaches.empty() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    const auto rounds = roundsOf(argc, argv);
    if (!rounds) {
        std::cerr << kUsage;
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    try {
        return run(argc, argv, *rounds);
    } catch (const std::exception& exception) {
        std::cout << exception.what() << std::endl;
        return 1;
    }
}
