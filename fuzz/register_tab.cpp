// The registration tab: the device's MAC reply, the name that a person types, and the address that comes of them.
#include "cloud/RegisterVorranoViewController.h"
#include "fuzz/Input.h"
#include "fuzz/TabWorld.h"
#include "platform/curl/WebAddress.h"

using namespace vorrano;
using fuzz::check;

namespace {

const std::string kRoot = "https://service.example/VorranoAPI/RestServiceImpl.svc/";

class Tab {
public:
    Tab() { m_tab->awakeFromNib(); }

    void act(fuzz::Input& input)
    {
        m_world.world.alerts.forget();
        switch (input.below(5)) {
        case 0:
            session::GlobalVariables::setGlobalAccountID(input.text());
            break;
        case 1:
            m_name = input.text();
            view().type("vorranoName", m_name);
            break;
        case 2:
            m_mac = input.text();
            m_tab->serialPortDidReceiveResponseToRequest(m_world.port(), m_mac, fuzz::requestOf("3"));
            check(m_tab->macAddressString().has_value() == fuzz::isUtf8(m_mac), "what is UTF-8 is a MAC address");
            check(m_tab->macAddressString().value_or(m_mac) == m_mac, "it is kept as it came");
            break;
        case 3:
            m_tab->serialPortRequestDidTimeout(m_world.port(), fuzz::requestOf("3"));
            check(m_world.world.alerts.shown().empty(), "a time-out shows nothing");
            break;
        default:
            view().press("saveButton");
            checkSaved();
        }
        m_world.checkAlerts();
    }

private:
    support::FakeView& view() { return static_cast<support::FakeView&>(*m_tab->view()); }

    void checkSaved()
    {
        auto& world = m_world.world;
        const bool isCalled = !m_name.empty() && m_tab->macAddressString().has_value();
        check(world.alerts.shown().size() == (isCalled ? 0 : 1), "what is missing is told");
        check((world.time.backgroundTasks() > 0) == isCalled, "the service is called when nothing is missing");
        if (isCalled) {
            world.urlFetch.answerNothing();
            world.run();
            check(world.urlFetch.requests().back().starts_with(kRoot + "insertAccountVorranos/"), "at its address");
            check(world.alerts.only().messageText == "Success", "whatever it answers, that is told");
        }
    }

    fuzz::TabWorld m_world;
    std::shared_ptr<cloud::RegisterVorranoViewController> m_tab = cloud::RegisterVorranoViewController::create();
    std::string m_name;
    std::string m_mac;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::actThrough<Tab>(data, size);
    return 0;
}
