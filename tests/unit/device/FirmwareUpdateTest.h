#pragma once

#include "unit/device/TemporaryFile.h"
#include "unit/device/UtilitiesTabTest.h"

#include <stdexcept>

namespace vorrano::device {

inline constexpr auto kLinePause = 100000002ns; // 0.1 s in single precision, not shorter

inline Alert question(std::string text)
{
    return {std::move(text), {"Yes", "No"}, std::nullopt, platform::AlertStyle::Warning};
}

inline const Alert kPcConnected = question("Does the Vorrano screen display 'PC Connected...' ?");
inline const Alert kProceed =
    question("You must have downloaded the update file(vorrano.hex) from downloads.vorrano.example downloads before "
             "proceeding. Do you want to proceed with updating the Vorrano Firmware?");
inline const Alert kFinished = alertOf("Finished Updating Firmware", "Success");
inline const Alert kNoBootloader = alertOf("Failed to enter bootloader mode", "Error");
inline const Alert kNoUpload = alertOf("Failed to upload data", "Error");
inline const Alert kProblemWithImage = alertOf("Problem encountered during final bootloader sequence", "Error");
inline const Alert kUpToDate =
    alertOf("Your Vorrano is updated with the latest version. There is no need to update.", "Latest Version Detected");

// The utilities tab, the person at its firmware update, and the service that knows the latest version.
struct FirmwareUpdateTest : UtilitiesTab {
    static constexpr int kYes = platform::kAlertFirstButton;
    static constexpr int kNo = platform::kAlertSecondButton;

    // Begins an update without the version check, with that image; the device has not answered yet.
    void beginUpdate(const std::filesystem::path& image)
    {
        world.alerts.queueAnswer(kNo);
        world.alerts.queueAnswer(kYes);
        world.openPanel.queueFile(image);
        press("buttonUpdateFirmware");
        EXPECT_THAT(alerts(), ElementsAre(kPcConnected, kProceed));
        world.alerts.forget();
    }

    // As far as the device's ">" and "U".
    void upload(const std::filesystem::path& image)
    {
        beginUpdate(image);
        reply(">");
        line().forget();
        reply("U");
    }

    // The next write of these bytes fails in a way that no port does.
    void throwOnWrite(const std::string& bytes)
    {
        line().onWrite([this, bytes](const std::string& written) {
            if (written == bytes) {
                line().onWrite({});
                throw std::runtime_error("a write that throws");
            }
        });
    }

    // Asks for the device's version to compare it.
    void beginCheck()
    {
        world.alerts.queueAnswer(kYes);
        press("buttonUpdateFirmware");
        EXPECT_EQ(world.alerts.only(), kPcConnected);
        world.alerts.forget();
    }

    // An answer of the service whose value begins where it must.
    [[nodiscard]] static std::string answerOf(const std::string& value)
    {
        return R"({"GetLatestFirmwareResult":)" + value + "}";
    }

    [[nodiscard]] BootloaderSequence step() const { return tab->firmwareUpdate().strBootloaderSequence(); }
};

} // namespace vorrano::device
