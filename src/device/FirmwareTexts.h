#pragma once

#include <string_view>

// What the firmware update says.
namespace vorrano::device::firmware_text {

inline constexpr std::string_view kYes = "Yes";
inline constexpr std::string_view kNo = "No";
inline constexpr std::string_view kPcConnectedQuestion = "Does the Vorrano screen display 'PC Connected...' ?";
// The name of the download site stands between the two.
inline constexpr std::string_view kProceedQuestionBegin = "You must have downloaded the update file(vorrano.hex) from ";
inline constexpr std::string_view kProceedQuestionEnd =
    " downloads before proceeding. Do you want to proceed with updating the Vorrano Firmware?";
inline constexpr std::string_view kUpToDate =
    "Your Vorrano is updated with the latest version. There is no need to update.";
inline constexpr std::string_view kLatestVersion = "Latest Version Detected";
inline constexpr std::string_view kNoBootloader = "Failed to enter bootloader mode";
inline constexpr std::string_view kNoUpload = "Failed to upload data";
inline constexpr std::string_view kProblemEnteringBootloader = "Encountered problem with entering bootloader";
inline constexpr std::string_view kProblemUploading = "Encountered problem with uploading data";
inline constexpr std::string_view kProblemDuringImage = "Problem encountered during final bootloader sequence";
// Shown by a desktop to the person who wants the computer to sleep meanwhile.
inline constexpr std::string_view kUploading = "The firmware of the Vorrano is being updated";
inline constexpr std::string_view kFinished = "Finished Updating Firmware";

} // namespace vorrano::device::firmware_text
