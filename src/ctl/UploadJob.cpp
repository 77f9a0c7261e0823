#include "ctl/UploadJob.h"

#include "device/DeviceCommand.h"
#include "device/FirmwareImage.h"
#include "device/FirmwareTexts.h"
#include "platform/StayAwake.h"
#include "platform/System.h"
#include "platform/Terminal.h"

#include <stdexcept>
#include <utility>

namespace vorrano::ctl {

using device::bytesOf;
using device::DeviceCommand;
using serial::SerialPort;

namespace {

// A device restarts within half a second; one that says nothing for so long has no bootloader.
constexpr std::chrono::seconds kLongestRestart{5};
constexpr auto kPause = std::chrono::ceil<std::chrono::microseconds>(device::kPauseAfterLine);

// Ends the sending of an image.
struct UploadBroken : std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace

std::shared_ptr<DeviceJob> UploadJob::create(std::shared_ptr<SerialPort> port, const platform::PortAccess& portAccess,
                                             std::shared_ptr<const std::string> image, UploadSurroundings surroundings)
{
    return std::shared_ptr<DeviceJob>(
        new UploadJob(std::move(port), portAccess, std::move(image), std::move(surroundings)));
}

UploadJob::UploadJob(std::shared_ptr<SerialPort> port, const platform::PortAccess& portAccess,
                     std::shared_ptr<const std::string> image, UploadSurroundings surroundings)
    : DeviceJob(std::move(port), portAccess)
    , m_image(std::move(image))
    , m_surroundings(std::move(surroundings))
    , m_mainQueue(platform::System::current().mainQueue)
    , m_terminal(platform::System::current().terminal)
{}

void UploadJob::begin()
{
    awaitPrompt(Step::Bootloader, device::firmware_text::kNoBootloader);
    write(
        [](SerialPort& port) {
            return port.sendData(bytesOf(DeviceCommand::ResetDevice)) &&
                   port.sendData(bytesOf(DeviceCommand::EnterBootloader));
        },
        [] {});
}

void UploadJob::awaitPrompt(Step step, std::string_view complaint)
{
    m_step = step;
    m_complaint = complaint;
    after(kLongestRestart, [this, step] {
        if (m_step == step) {
            fail(std::string(m_complaint));
        }
    });
}

void UploadJob::serialPortDidReceiveData(SerialPort& /*port*/, const serial::Bytes& data)
{
    if (hasEnded() || m_step == Step::Upload) {
        return;
    }
    didReceivePrompt(data == (m_step == Step::Bootloader ? device::kBootloaderPrompt : device::kUploadPrompt));
}

void UploadJob::didReceivePrompt(bool isRight)
{
    if (!isRight) {
        fail(std::string(m_complaint));
    } else if (m_step == Step::Bootloader) {
        awaitPrompt(Step::UploadPrompt, device::firmware_text::kNoUpload);
        write([](SerialPort& port) { return port.sendData(bytesOf(DeviceCommand::StartUpload)); }, [] {});
    } else {
        upload();
    }
}

void UploadJob::upload()
{
    m_step = Step::Upload;
    m_awake = m_surroundings.stayAwake.stayAwake(device::firmware_text::kUploading);
    write([this, self = shared_from_this()](SerialPort& port) { return sendImageTo(port); },
          [this] {
              m_awake.reset();
              addValue("update", std::string(device::firmware_text::kFinished));
              finish();
          });
}

// On a background thread.
bool UploadJob::sendImageTo(SerialPort& port)
{
    std::size_t lines = 0;
    const auto write = [&](const std::string& character) {
        if (*endedFlag() || !port.sendData(character)) {
            throw UploadBroken("the image did not go out");
        }
    };
    const auto pause = [&] {
        m_terminal.wait(kPause, {});
        m_mainQueue.async([self = shared_from_this(), this, count = ++lines] {
            if (!hasEnded()) {
                m_surroundings.lineSent(this->port(), count);
            }
        });
    };
    try {
        device::sendImage(*m_image, {.write = write, .pause = pause});
    } catch (const UploadBroken&) {
        return false;
    }
    return true;
}

} // namespace vorrano::ctl
