#pragma once

#include "app/shell/VorranoAppDelegate.h"
#include "campaign/Action.h"
#include "campaign/Fault.h"
#include "campaign/VirtualService.h"
#include "campaign/VirtualVorrano.h"
#include "support/World.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

namespace vorrano::campaign {

// What the demo is made of, on virtual time: the program from its start on, a simulated Vorrano on the cable, and the
// simulated web service with an account in it; and the person at the screens.
//
// Threads: the one that makes it is the main thread.
class Demo {
public:
    // `image` is the firmware image that the person chooses.
    explicit Demo(std::filesystem::path image);
    Demo(const Demo&) = delete;
    Demo& operator=(const Demo&) = delete;
    ~Demo();

    // The person.
    void signIn();
    // Chooses the action's tab, if there is one, and what there is to type in it.
    void prepare(const Action& action);
    // Does it. For an action that the choice of its tab begins: chooses the tab.
    void perform(const Action& action);

    void strike(const Fault& fault);
    // The same once the action has begun: with the first bytes at the device, or the request at the service.
    void strikeDuring(const Fault& fault);
    // All is well again: the service, the network, the line, the cable and what is at its end.
    void heal();
    // Lets the device end what it does: afterwards it waits for a command.
    void settle();

    void advance(support::Nanoseconds duration) { m_world.advance(duration); }
    [[nodiscard]] support::Nanoseconds now() const { return m_world.now(); }
    [[nodiscard]] const Alerts& alerts() const { return m_world.alerts.shown(); }
    void forgetAlerts() { m_world.alerts.forget(); }

    // Whether the screen is dimmed.
    [[nodiscard]] bool isBusy(Screen screen);
    // What an action is for, where no alert tells: signed in, with the account in the form, with the image in the
    // device.
    [[nodiscard]] bool isSignedIn();
    [[nodiscard]] bool isAccountShown();
    [[nodiscard]] bool isImageWhole();

private:
    void strikeLine(LineFault fault);
    void order(simulator::Fault::Kind kind, std::chrono::milliseconds delay = {});
    void chooseTab(Screen screen);
    void fill(const Action& action);
    void fillAccount();
    void answerQuestions(const Action& action);
    [[nodiscard]] support::FakeView& view(Screen screen);

    support::World m_world{"https://service.example"};
    VirtualVorrano m_vorrano{m_world};
    VirtualService m_service{m_world};
    std::filesystem::path m_image;
    std::unique_ptr<shell::VorranoAppDelegate> m_program;
};

// The text of the image that is uploaded.
[[nodiscard]] std::string imageText();

} // namespace vorrano::campaign
