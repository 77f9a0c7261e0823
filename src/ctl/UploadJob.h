#pragma once

#include "ctl/DeviceJob.h"
#include "platform/Subscription.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace vorrano::platform {
class StayAwake;
class Terminal;
} // namespace vorrano::platform

namespace vorrano::ctl {

// What an upload needs beside its port.
struct UploadSurroundings {
    platform::StayAwake& stayAwake;
    // Told on the main queue, after each line, how many are out.
    std::function<void(const serial::SerialPort& port, std::size_t lines)> lineSent;
};

// Resets the device into its bootloader and sends it a firmware image, at the pace of the image's lines.
class UploadJob final : public DeviceJob {
public:
    [[nodiscard]] static std::shared_ptr<DeviceJob> create(std::shared_ptr<serial::SerialPort> port,
                                                           const platform::PortAccess& portAccess,
                                                           std::shared_ptr<const std::string> image,
                                                           UploadSurroundings surroundings);

    [[nodiscard]] bool isUploading() const override { return m_step == Step::Upload && !hasEnded(); }

    void serialPortDidReceiveData(serial::SerialPort& port, const serial::Bytes& data) override;

private:
    enum class Step { Bootloader, UploadPrompt, Upload };

    UploadJob(std::shared_ptr<serial::SerialPort> port, const platform::PortAccess& portAccess,
              std::shared_ptr<const std::string> image, UploadSurroundings surroundings);
    void begin() override;
    void awaitPrompt(Step step, std::string_view complaint);
    void didReceivePrompt(bool isRight);
    void upload();
    bool sendImageTo(serial::SerialPort& port);

    const std::shared_ptr<const std::string> m_image;
    const UploadSurroundings m_surroundings;
    platform::MainQueue& m_mainQueue;
    platform::Terminal& m_terminal;
    Step m_step = Step::Bootloader;
    std::string_view m_complaint;
    platform::Subscription m_awake;
};

} // namespace vorrano::ctl
