// The utilities tab: what a person presses, and the device's chunks and replies, beside a model of what is shown.
#include "device/UtilitiesViewController.h"
#include "fuzz/Input.h"
#include "fuzz/TabWorld.h"
#include "fuzz/UtilitiesModel.h"

#include <array>

using namespace vorrano;
using fuzz::check;

namespace {

// A button, and the command that it sends.
struct Query {
    const char* button;
    char command;
};
constexpr std::array kQueries{Query{"buttonPowerStatus", '0'},
                              Query{"buttonADC", '1'},
                              Query{"buttonNetworkConnectivityStatus", '2'},
                              Query{"buttonMacAddress", '3'},
                              Query{"buttonFirmwareVersion", '4'},
                              Query{"wifiFirmwareQuery", '5'},
                              Query{"buttonGetSSID", 'c'},
                              Query{"buttonGetNetworkPassword", 'd'},
                              Query{"buttonGetThrottle", 'f'},
                              Query{"buttonGetTemperatureUnit", 'h'},
                              Query{"buttonSetTemperatureUnit", 'g'}};

class Tab {
public:
    Tab() { m_tab->awakeFromNib(); }

    void act(fuzz::Input& input)
    {
        m_world.world.alerts.forget();
        switch (input.below(8)) {
        case 0:
        case 1: {
            const auto& query = kQueries[input.below(kQueries.size())];
            press(query.button);
            m_model.query(query.command);
            break;
        }
        case 2:
            update(input.below(6));
            break;
        case 3:
            reply(input.text());
            break;
        case 4:
            set(input);
            return;
        case 5:
            m_tab->serialPortRequestDidTimeout(m_world.port(), fuzz::requestOf("0"));
            m_model.timeOut();
            break;
        default:
            chunk(input.text());
        }
        compare();
    }

private:
    support::FakeView& view() { return static_cast<support::FakeView&>(*m_tab->view()); }

    void press(const char* button) { check(view().press(button), "a button can be pressed"); }

    // Without a version check, as that needs a service; the person may say no, or choose no file.
    void update(std::size_t choice)
    {
        m_world.world.alerts.queueAnswer(platform::kAlertSecondButton);
        m_world.world.alerts.queueAnswer(choice < 2 ? platform::kAlertSecondButton : platform::kAlertFirstButton);
        if (choice > 2) {
            m_world.world.openPanel.queueFile("/nowhere/vorrano.hex");
        } else if (choice == 2) {
            m_world.world.openPanel.queueCancel();
        }
        press("buttonUpdateFirmware");
        m_model.update(choice >= 2, choice > 2);
    }

    void reply(const std::string& bytes)
    {
        const std::string command(1, m_model.command());
        m_tab->serialPortDidReceiveResponseToRequest(m_world.port(), bytes, fuzz::requestOf(command));
        m_model.reply(bytes);
    }

    void chunk(const std::string& bytes)
    {
        m_tab->serialPortDidReceiveData(m_world.port(), bytes);
        m_model.chunk(bytes);
    }

    // What a person may set: shown at once when it is refused, and nothing else.
    void set(fuzz::Input& input)
    {
        constexpr std::array kSettings{Query{"buttonSetSSID", '8'}, Query{"buttonSetPassword", '9'},
                                       Query{"buttonSetThrottle", 'e'}};
        constexpr std::array kFields{"setSSID", "setPassword", "setThrottleTextField"};
        const auto which = input.below(kSettings.size());
        view().type(kFields[which], input.text());
        press(kSettings[which].button);
        const bool isRefused = !m_world.world.alerts.shown().empty();
        check(m_world.world.alerts.shown().size() <= 1, "one refusal at most");
        if (!isRefused || kSettings[which].command == 'e') {
            m_model.query(kSettings[which].command);
        }
        if (!isRefused) {
            check(view().alpha() == 0.3, "the tab is busy with what it sends");
        }
    }

    void compare()
    {
        m_world.checkAlerts();
        check(m_world.world.alerts.shown() == m_model.takeAlerts(), "the alerts are those of the model");
        check(m_tab->replies().connectivityStatus() == m_model.connectivity() &&
                  m_tab->replies().adcNumber() == m_model.adc(),
              "so is what is gathered");
        check(m_tab->exchange().incomingDataBuffer() == m_model.buffer(), "every chunk is kept");
    }

    fuzz::TabWorld m_world;
    std::shared_ptr<device::UtilitiesViewController> m_tab = device::UtilitiesViewController::create();
    fuzz::UtilitiesModel m_model;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::actThrough<Tab>(data, size);
    return 0;
}
