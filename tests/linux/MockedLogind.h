#pragma once

#include "linux/MockedService.h"

#include <string>
#include <vector>

namespace vorrano::support {

// The system's login manager, as far as sleep and what holds it up.
class MockedLogind {
public:
    MockedLogind();

    // What is being inhibited and how, in the order of asking: "sleep delay".
    [[nodiscard]] std::vector<std::string> inhibitors() const;

    // Who asked for the inhibitors, and why: "Kettle: Water is being boiled".
    [[nodiscard]] std::vector<std::string> reasons() const;

    // How often an inhibitor was asked for.
    [[nodiscard]] int requests() const;

    void sendPrepareForSleep(bool begins) const;

    // Refuses each inhibitor from here on.
    void refuseInhibitors() const;

    // Tells that sleep begins when an inhibitor is asked for, and grants that one afterwards.
    void beginSleepBeforeGranting() const;

private:
    struct Inhibitor {
        std::string what;
        std::string who;
        std::string why;
        std::string mode;
    };
    [[nodiscard]] std::vector<Inhibitor> list() const;
    void replaceInhibit(const QString& code) const;

    MockedService m_service{QStringLiteral("org.freedesktop.login1"), QStringLiteral("logind")};
};

} // namespace vorrano::support
