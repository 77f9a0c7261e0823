#pragma once

#include "support/DeviceLanguage.h"
#include "unit/device/DeviceTabTest.h"

// What a person is shown after the press of a button, whatever the device says to it.
namespace vorrano::device {

using Alerts = std::vector<Alert>;
using Chunks = std::vector<std::string>;

// The alerts, once nothing more can come of what was sent, where the device says these chunks and nothing else.
[[nodiscard]] Alerts expectedAlerts(const support::LanguageButton& button, const Chunks& chunks);

// The alert of the table, which is the reply's in one chunk; none where that shows nothing.
[[nodiscard]] Alerts alertsOfTheTable(const support::LanguageButton& button);

// The tab that the button is on.
[[nodiscard]] std::shared_ptr<DeviceTabController> createTabOf(const support::LanguageButton& button);

} // namespace vorrano::device
