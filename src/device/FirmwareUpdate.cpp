#include "device/FirmwareUpdate.h"

#include "app/session/Text.h"
#include "cloud/web/Reply.h"
#include "cloud/web/ServiceAddress.h"
#include "device/DeviceTabController.h"
#include "device/DeviceTexts.h"
#include "device/FirmwareImage.h"
#include "device/FirmwareTexts.h"
#include "device/FirmwareVersion.h"
#include "platform/Alerts.h"
#include "platform/BackgroundQueue.h"
#include "platform/OpenPanel.h"
#include "platform/Platform.h"
#include "platform/System.h"
#include "platform/UrlFetch.h"

#include <exception>
#include <utility>

namespace vorrano::device {

using platform::Platform;

namespace {

constexpr std::chrono::milliseconds kCheckPause{500};
// The device takes a line at this pace; it is the number of single precision next to 0.1 s.
constexpr auto kLinePause = std::chrono::ceil<std::chrono::nanoseconds>(std::chrono::duration<double>(0.1F));
constexpr std::string_view kBootloaderPrompt = ">";
constexpr std::string_view kUploadPrompt = "U";

std::string proceedQuestion()
{
    return std::string(firmware_text::kProceedQuestionBegin)
        .append(web::kDownloadSite)
        .append(firmware_text::kProceedQuestionEnd);
}

} // namespace

std::optional<std::string> FirmwareAnswer::text() const
{
    const std::lock_guard lock(m_mutex);
    return m_text;
}

void FirmwareAnswer::setText(std::optional<std::string> text)
{
    const std::lock_guard lock(m_mutex);
    m_text = std::move(text);
}

FirmwareUpdate::FirmwareUpdate(DeviceTabController& tab)
    : m_tab(tab)
    , m_alerts(Platform::current().alerts)
    , m_openPanel(Platform::current().openPanel)
    , m_pause(Platform::current().pause)
    , m_backgroundQueue(Platform::current().backgroundQueue)
    , m_mainQueue(Platform::current().mainQueue)
    , m_urlFetch(Platform::current().urlFetch)
{}

int FirmwareUpdate::ask(std::string question)
{
    return m_alerts.runModal({std::move(question),
                              {std::string(firmware_text::kYes), std::string(firmware_text::kNo)},
                              std::nullopt,
                              platform::AlertStyle::Warning});
}

void FirmwareUpdate::buttonUpdateFirmware(platform::Control& sender)
{
    const auto answer = ask(std::string(firmware_text::kPcConnectedQuestion));
    if (answer == platform::kAlertSecondButton) {
        m_readVersion = false;
        m_tab.displayAndStartProgressIndicator(sender);
        beginUpdate();
    } else if (answer == platform::kAlertFirstButton) {
        m_tab.displayAndStartProgressIndicator(sender);
        m_readVersion = true;
        m_tab.setQueryNumber(DeviceCommand::FirmwareVersion);
        m_tab.writeAwaitingAck(bytesOf(DeviceCommand::FirmwareVersion));
    }
}

void FirmwareUpdate::checkLatestFirmware(std::string_view deviceVersion)
{
    m_pause.pause(kCheckPause);
    const double version = text::doubleValue(deviceVersion);
    const auto whole = wholeVersion(version);
    fetchLatestFirmware(whole);
    m_pause.pause(kCheckPause);
    const double latest = latestVersion(m_data->text(), whole);
    m_pause.pause(kCheckPause);
    if (version == latest) {
        m_tab.displayAlert(firmware_text::kUpToDate, firmware_text::kLatestVersion);
        m_tab.hideAndStopProgressIndicator(nullptr);
    } else {
        beginUpdate();
    }
    m_readVersion = false;
}

void FirmwareUpdate::fetchLatestFirmware(std::int32_t whole)
{
    m_backgroundQueue.async([address = latestFirmwareAddress(web::serviceRoot(), whole), data = m_data,
                             &urlFetch = m_urlFetch, &mainQueue = m_mainQueue] {
        const auto body = urlFetch.contentsOfUrl(address);
        // Parsed, but an answer that is no JSON counts as much: the version stands at a fixed place of its text.
        static_cast<void>(web::Reply::parsed(body));
        data->setText(firmwareAnswerOf(body));
        mainQueue.async([] {});
    });
}

void FirmwareUpdate::beginUpdate()
{
    const auto answer = ask(proceedQuestion());
    if (answer == platform::kAlertSecondButton) {
        m_tab.hideAndStopProgressIndicator(nullptr);
        return;
    }
    if (answer != platform::kAlertFirstButton) {
        return;
    }
    // A panel that was cancelled leaves the progress display on.
    for (const auto& file : m_openPanel.runModal()) {
        m_filename = file;
        m_bootloaderSequence = BootloaderSequence::One;
        UpdateFirmwareResetAndEnterBootloader();
    }
}

void FirmwareUpdate::bootloaderDidAnswer(const std::optional<std::string>& chunk)
{
    if (m_bootloaderSequence == BootloaderSequence::One) {
        if (chunk == kBootloaderPrompt) {
            UpdateFirmwareWrite();
        } else {
            m_tab.displayAlert(firmware_text::kNoBootloader, device_text::kError);
        }
    } else if (m_bootloaderSequence == BootloaderSequence::Two) {
        if (chunk == kUploadPrompt) {
            UpdateFirmwareWrite2();
        } else {
            m_tab.displayAlert(firmware_text::kNoUpload, device_text::kError);
        }
    }
}

void FirmwareUpdate::UpdateFirmwareResetAndEnterBootloader()
{
    try {
        m_tab.writeAwaitingAck(bytesOf(DeviceCommand::ResetDevice));
        m_tab.writeAwaitingAck(bytesOf(DeviceCommand::EnterBootloader));
    } catch (const std::exception&) {
        m_tab.displayAlert(firmware_text::kProblemEnteringBootloader, device_text::kError);
    }
}

void FirmwareUpdate::UpdateFirmwareWrite()
{
    try {
        m_bootloaderSequence = BootloaderSequence::Two;
        m_tab.writeAwaitingAck(bytesOf(DeviceCommand::StartUpload));
    } catch (const std::exception&) {
        m_tab.displayAlert(firmware_text::kProblemUploading, device_text::kError);
    }
}

void FirmwareUpdate::UpdateFirmwareWrite2()
{
    try {
        m_bootloaderSequence = BootloaderSequence::Three;
        writeImage();
    } catch (const std::exception&) {
        m_tab.displayAlert(firmware_text::kProblemDuringImage, device_text::kError);
    }
    // Said after a failure too.
    m_tab.displayAlert(firmware_text::kFinished, device_text::kSuccess);
    m_tab.hideAndStopProgressIndicator(nullptr);
}

void FirmwareUpdate::writeImage()
{
    const auto image = readFirmwareImage(m_filename);
    if (!image) {
        return;
    }
    for (const auto line : linesOfImage(*image)) {
        for (const auto& character : charactersOfLine(line)) {
            m_tab.writeAwaitingAck(character);
        }
        m_pause.pause(kLinePause);
    }
}

} // namespace vorrano::device
