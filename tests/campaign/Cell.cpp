#include "campaign/Cell.h"

#include "campaign/Demo.h"

#include <algorithm>
#include <exception>
#include <variant>

namespace vorrano::campaign {

using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds kLook{10};
// Long enough for a poll of the modem lines, and for whatever else a fault sets off by itself.
constexpr std::chrono::milliseconds kSettled{50};
constexpr std::chrono::milliseconds kQuiet{300};
constexpr std::chrono::seconds kTimeLimit{2};

std::string textOf(const Alerts& alerts)
{
    std::string text;
    for (const auto& alert : alerts) {
        text += " [" + alert.messageText.value_or("(none)") + " | " + alert.informativeText.value_or("(none)") + "]";
    }
    return text.empty() ? " nothing" : text;
}

std::string textOf(const Outcome& outcome)
{
    std::string text = textOf(outcome.alerts) + (outcome.isBusy ? ", busy" : ", not busy");
    if (outcome.isDone) {
        text += *outcome.isDone ? ", done" : ", not done";
    }
    return text + ", within " + std::to_string(outcome.limit.count()) + " ms";
}

bool mustStrikeAtOpening(const Fault& fault)
{
    const auto* line = std::get_if<LineFault>(&fault.what);
    return line != nullptr && *line == LineFault::HeldByAnother;
}

class Runner {
public:
    Runner(Cell& cell, const std::filesystem::path& image)
        : m_cell(cell)
        , m_demo(image)
    {}

    void go()
    {
        const auto& action = m_cell.action;
        if (action.kind != Kind::SignIn) {
            m_demo.signIn();
        }
        strikeBefore();
        m_cell.expected = expectedOutcome(action, m_cell.fault, m_cell.moment);
        m_cell.observed = observe(action, m_cell.expected);
        compare("", m_cell.expected, m_cell.observed);
        if (m_cell.moment == Moment::After) {
            m_demo.strike(m_cell.fault);
        }
        expectNothingMore();
        goOnAfterwards();
    }

private:
    void strikeBefore()
    {
        const bool isBefore = m_cell.moment == Moment::Before;
        const bool isAtOpening = mustStrikeAtOpening(m_cell.fault);
        if (isBefore && isAtOpening) {
            m_demo.strike(m_cell.fault);
        }
        m_demo.prepare(m_cell.action);
        if (isBefore && !isAtOpening) {
            m_demo.strike(m_cell.fault);
            m_demo.advance(kSettled);
        } else if (m_cell.moment == Moment::During) {
            m_demo.strikeDuring(m_cell.fault);
        }
    }

    // Does it, and looks until what is expected must have happened; the limit is when the last of it did.
    Outcome observe(const Action& action, const Outcome& expected)
    {
        const auto begun = m_demo.now();
        auto last = begun;
        std::size_t alerts = 0;
        m_demo.perform(action);
        while (true) {
            if (m_demo.alerts().size() != alerts) {
                alerts = m_demo.alerts().size();
                last = m_demo.now();
            }
            if (m_demo.now() - begun >= expected.limit + kGrace) {
                break;
            }
            m_demo.advance(kLook);
        }
        Outcome outcome{.alerts = m_demo.alerts()};
        outcome.limit = std::chrono::ceil<std::chrono::milliseconds>(last - begun);
        outcome.isDone = isDone(action);
        const bool hasLeft = action.kind == Kind::SignIn && outcome.isDone == true;
        outcome.isBusy = !hasLeft && m_demo.isBusy(action.screen);
        return outcome;
    }

    std::optional<bool> isDone(const Action& action)
    {
        switch (action.kind) {
        case Kind::SignIn:
            return m_demo.isSignedIn();
        case Kind::LoadAccount:
            return m_demo.isAccountShown();
        case Kind::Upload:
            return m_demo.isImageWhole();
        default:
            return std::nullopt;
        }
    }

    void compare(const std::string& what, const Outcome& expected, const Outcome& observed)
    {
        const bool isInTime = observed.limit <= expected.limit + kGrace;
        if (observed.alerts != expected.alerts || observed.isBusy != expected.isBusy ||
            observed.isDone != expected.isDone || !isInTime) {
            m_cell.complaints.push_back(what + "expected" + textOf(expected) + "; came" + textOf(observed));
        }
    }

    void expectNothingMore()
    {
        const auto before = m_demo.alerts().size();
        m_demo.advance(kQuiet);
        if (m_demo.alerts().size() != before) {
            m_cell.complaints.push_back("more came afterwards:" + textOf(m_demo.alerts()));
        }
    }

    // The same again when all is well, and a question that every well Vorrano answers.
    void goOnAfterwards()
    {
        const bool isLineBad = std::holds_alternative<LineFault>(m_cell.fault.what);
        if (isLineBad && m_cell.moment != Moment::After) {
            // The queue of a port that was closed drains by time-outs.
            m_demo.advance(m_cell.action.writes.size() * kTimeLimit);
        }
        m_demo.heal();
        const bool isAtLogin = !m_demo.isSignedIn();
        if (m_cell.action.kind != Kind::SignIn || isAtLogin) {
            again(m_cell.action);
        }
        m_demo.settle();
        const auto actions = allActions();
        again(*std::find_if(actions.begin(), actions.end(), [](const Action& a) { return a.name == "power status"; }));
    }

    void again(const Action& action)
    {
        m_demo.prepare(action);
        const auto expected = healthyOutcome(action);
        compare("afterwards, " + action.name + ": ", expected, observe(action, expected));
        expectNothingMore();
    }

    Cell& m_cell;
    Demo m_demo;
};

} // namespace

Cell runCell(const Action& action, const Fault& fault, Moment moment, const std::filesystem::path& image)
{
    Cell cell{action, fault, moment};
    try {
        Runner(cell, image).go();
    } catch (const std::exception& exception) {
        cell.complaints.emplace_back(exception.what());
    }
    return cell;
}

char letterOf(const Cell& cell)
{
    if (!cell.complaints.empty()) {
        return '!';
    }
    if (cell.observed.alerts == healthyOutcome(cell.action).alerts) {
        return '=';
    }
    const auto isTimeOut = [](const Alert& alert) { return alert.informativeText == "Please try again"; };
    if (std::any_of(cell.observed.alerts.begin(), cell.observed.alerts.end(), isTimeOut)) {
        return 't';
    }
    const auto isQuestion = [](const Alert& alert) { return alert.buttons.size() > 1; };
    const bool isNothing = std::all_of(cell.observed.alerts.begin(), cell.observed.alerts.end(), isQuestion);
    return isNothing ? '-' : 'o';
}

std::string nameOf(Moment moment)
{
    return moment == Moment::Before ? "before" : moment == Moment::During ? "during" : "after";
}

} // namespace vorrano::campaign
