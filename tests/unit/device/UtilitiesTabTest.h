#pragma once

#include "device/UtilitiesViewController.h"
#include "unit/device/DeviceTabTest.h"

namespace vorrano::device {

// The utilities tab with a Vorrano on the cable.
struct UtilitiesTab : DeviceTabTest<UtilitiesViewController> {
    UtilitiesTab() { chooseTabWithVorrano(); }

    void type(const std::string& field, const std::string& text) { EXPECT_TRUE(view().type(field, text)); }
};

} // namespace vorrano::device
