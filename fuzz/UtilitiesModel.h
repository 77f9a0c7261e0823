#pragma once

#include "device/DeviceCommand.h"
#include "fuzz/Utf8.h"
#include "platform/Alerts.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorrano::fuzz {

// What the utilities tab shows, told a second time and in another way: as the rules stand, without screens or ports.
// The version check is left out, as it needs the web service.
class UtilitiesModel {
public:
    void query(char command) { m_command = command; }
    [[nodiscard]] char command() const { return m_command; }

    void update(bool proceeds, bool hasFile)
    {
        m_alerts.push_back(question("Does the Vorrano screen display 'PC Connected...' ?"));
        m_alerts.push_back(question("You must have downloaded the update file(vorrano.hex) from "
                                    "downloads.vorrano.example downloads before proceeding. Do you want to proceed "
                                    "with updating the Vorrano Firmware?"));
        if (proceeds && hasFile) {
            m_step = 1;
        }
    }

    void timeOut() { show("ERROR", "Please try again"); }

    void reply(const std::string& bytes)
    {
        auto text = textOf(bytes);
        if (text && m_command == 'c') {
            std::replace(text->begin(), text->end(), '$', ' ');
        }
        m_text = text;
        if (m_command == 'f') {
            show(std::to_string(device::throttleFromReply(text.value_or(""))), "Throttle is displayed");
        } else {
            show(text, "Success");
        }
    }

    void chunk(const std::string& bytes)
    {
        m_text = textOf(bytes);
        m_buffer += bytes;
        bootloader();
        route();
    }

    [[nodiscard]] std::vector<platform::Alert> takeAlerts() { return std::exchange(m_alerts, {}); }
    [[nodiscard]] const std::optional<std::string>& connectivity() const { return m_connectivity; }
    [[nodiscard]] const std::optional<std::string>& adc() const { return m_adc; }
    [[nodiscard]] const std::string& buffer() const { return m_buffer; }

private:
    static std::optional<std::string> textOf(const std::string& bytes)
    {
        return isUtf8(bytes) ? std::optional(bytes) : std::nullopt;
    }

    static platform::Alert question(std::string text)
    {
        return {std::move(text), {"Yes", "No"}, std::nullopt, platform::AlertStyle::Warning};
    }

    void show(std::optional<std::string> title, std::string text)
    {
        m_alerts.push_back({std::move(title), {"OK"}, std::move(text)});
    }

    void bootloader()
    {
        if (m_step == 1 && m_text == ">") {
            m_step = 2;
        } else if (m_step == 1) {
            show("Failed to enter bootloader mode", "Error");
        } else if (m_step == 2 && m_text == "U") {
            m_step = 3;
            // The image is not there.
            show("Problem encountered during final bootloader sequence", "Error");
            show("Finished Updating Firmware", "Success");
        } else if (m_step == 2) {
            show("Failed to upload data", "Error");
        }
    }

    void route()
    {
        switch (m_command) {
        case '1':
            gather(m_adc, "ADC version number");
            break;
        case '2':
            gather(m_connectivity, "Vorrano is Connected to your WIFI Network");
            break;
        case '4':
            version(6, "Device Firmware Version");
            break;
        case '5':
            version(13, "Wifi Firmware Version");
            break;
        case 'g':
            if (m_text == "OK\n\r") {
                show(m_text, "");
            }
            break;
        case 'h':
            show(m_text == "0\n\r"   ? std::optional<std::string>("Fahrenheit")
                 : m_text == "1\n\r" ? std::optional<std::string>("Celsius")
                                     : std::nullopt,
                 "");
            break;
        default:
            break;
        }
    }

    void gather(std::optional<std::string>& gathered, const char* informativeText)
    {
        const bool isFirst = !gathered;
        const auto chunk = isFirst ? std::nullopt : m_text;
        if (isFirst) {
            gathered = m_text;
            m_text.reset();
        } else if (chunk) {
            *gathered += *chunk;
        }
        if (chunk && chunk->find("0\n\r") == std::string::npos) {
            show(gathered, informativeText);
            gathered.reset();
        }
    }

    void version(std::size_t shortest, const char* informativeText)
    {
        if (m_text && unitsOf(*m_text) >= shortest) {
            show(m_text, informativeText);
            m_text.reset();
        }
    }

    char m_command = 0;
    int m_step = 0;
    std::optional<std::string> m_text;
    std::optional<std::string> m_adc;
    std::optional<std::string> m_connectivity;
    std::string m_buffer;
    std::vector<platform::Alert> m_alerts;
};

} // namespace vorrano::fuzz
