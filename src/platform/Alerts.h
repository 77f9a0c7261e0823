#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vorrano::platform {

enum class AlertStyle { Informational, Warning };

// Both texts are plain text, shown with their line ends; an absent one is empty.
struct Alert {
    std::optional<std::string> messageText;
    std::vector<std::string> buttons;
    std::optional<std::string> informativeText;
    AlertStyle style = AlertStyle::Informational;

    friend bool operator==(const Alert&, const Alert&) = default;
};

// What an alert answers: the first button 1000, the second 1001; kNoAnswer when the program is ending.
inline constexpr int kAlertFirstButton = 1000;
inline constexpr int kAlertSecondButton = 1001;
inline constexpr int kNoAnswer = 0;

// Modal alerts.
//
// Threads: the main thread, which is held until a button was pressed; the main queue holds back meanwhile, and no
// other window of the program takes input. Esc and the window's close press the only button of an alert; an alert of
// two buttons stays up. Once the program is ending an alert answers at once.
class Alerts {
public:
    Alerts() = default;
    Alerts(const Alerts&) = delete;
    Alerts& operator=(const Alerts&) = delete;
    virtual ~Alerts() = default;

    virtual int runModal(const Alert& alert) = 0;
};

} // namespace vorrano::platform
