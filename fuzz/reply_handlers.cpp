// What the service answered, through each handler: login, account load, account save, registration, and the check of
// the latest firmware. The first byte says which.
#include "cloud/AccountInfoViewController.h"
#include "cloud/RegisterVorranoViewController.h"
#include "device/UtilitiesViewController.h"
#include "fuzz/Input.h"
#include "fuzz/TabWorld.h"
#include "web/Reply.h"

#include <array>

#include <nlohmann/json.hpp>

using namespace vorrano;
using fuzz::check;
using nlohmann::json;
using session::GlobalVariables;

namespace {

constexpr std::array kFields{"AccountLogin", "Password", "Email",   "Name",    "Address1",     "Address2",
                             "City",         "State",    "Country", "ZipCode", "GuestPassword"};

// What reading a key of the first record gives: a text, nothing, or an exception.
struct Reading {
    bool throws = false;
    std::optional<std::string> text{};
};

Reading readingOf(const json& body, const std::string& key)
{
    if (body.is_array()) {
        return {.throws = true};
    }
    if (!body.is_object() || !body.contains("data")) {
        return {};
    }
    const auto& data = body["data"];
    if (!data.is_array() || data.empty() || !data[0].is_object()) {
        return {.throws = true};
    }
    const auto& record = data[0];
    if (!record.contains(key)) {
        return {};
    }
    return record[key].is_string() ? Reading{.text = record[key].get<std::string>()} : Reading{.throws = true};
}

// A window of no controller.
class Screen : public cloud::ScreenWindow {
public:
    explicit Screen(std::shared_ptr<platform::Window> window)
        : m_window(std::move(window))
    {}
    [[nodiscard]] std::shared_ptr<platform::Window> window() const override { return m_window; }

private:
    std::shared_ptr<platform::Window> m_window;
};

// The handlers that a web call's reply comes to.
struct AccountTab : cloud::AccountInfoViewController {
    using AccountInfoViewController::updateUIWithDictionary;
    using AccountInfoViewController::updateViewWithAccountInfo;
};
struct RegisterTab : cloud::RegisterVorranoViewController {
    using RegisterVorranoViewController::updateUIWithDictionary;
};

class Handlers {
public:
    explicit Handlers(const std::string& bytes)
        : m_bytes(bytes)
        , m_reply(web::Reply::parsed(bytes))
        , m_body(m_reply.isNull() ? json() : json::parse(bytes))
    {}

    void login()
    {
        const auto window = m_world.world.layouts.loadWindow("LoginViewController");
        const auto screen = [this] { return std::make_shared<Screen>(m_world.world.layouts.loadWindow("Screen")); };
        const auto controller = cloud::LoginViewController::create(window->view(), {screen, screen});
        controller->validateLoginWithJSON(m_reply);

        const auto id = readingOf(m_body, "Id");
        const bool isSignedIn = !id.throws && id.text != "0";
        check(controller->success() == isSignedIn, "all but a refusal and a wrong shape sign in");
        check(GlobalVariables::getUserIsLoggedIn() == (isSignedIn ? std::optional<std::string>("1") : std::nullopt),
              "so says the session");
        check(GlobalVariables::getGlobalAccountID() == (isSignedIn ? id.text : std::nullopt), "with the account's id");
        expectTitle(isSignedIn ? nullptr : id.throws ? "Could not connect" : "Invalid AccountID/Password");
    }

    void load()
    {
        const auto controller = std::make_shared<AccountTab>();
        controller->awakeFromNib();
        bool isThrown = false;
        try {
            controller->updateViewWithAccountInfo(m_reply);
        } catch (const web::ReplyError&) {
            isThrown = true;
        }
        bool isExpected = false;
        for (const auto* const field : kFields) {
            isExpected = isExpected || readingOf(m_body, field).throws;
        }
        check(isThrown == isExpected, "a record of the wrong shape throws");
        auto& view = static_cast<support::FakeView&>(*controller->view());
        check(isThrown || view.text("email") == readingOf(m_body, "Email").text.value_or(""),
              "the record is in the form");
        expectTitle(nullptr);
    }

    void save()
    {
        GlobalVariables::setGlobalAccountID("57");
        const auto controller = std::make_shared<AccountTab>();
        controller->awakeFromNib();
        controller->updateUIWithDictionary(m_reply);

        const auto id = readingOf(m_body, "Id");
        const bool isSaved = !id.throws && id.text != "-1";
        check((GlobalVariables::getUserIsLoggedIn() == "1") == isSaved, "a saved account is signed in to");
        const bool isStored = isSaved && id.text != "0";
        check(GlobalVariables::getGlobalAccountID() == (isStored ? id.text : "57"), "its id is stored, but for 0");
        expectTitle(isSaved ? "Success!" : "ERROR");
        for (const auto& line : m_world.world.log.lines()) {
            check(line.starts_with("Exception: ") && line.size() < 100, "the log has nothing of the reply");
        }
    }

    void registration()
    {
        const auto controller = std::make_shared<RegisterTab>();
        controller->awakeFromNib();
        controller->updateUIWithDictionary(m_reply);
        expectTitle("Success");
    }

    // Through the fetch itself, as the check reads the body and no reply.
    void latestFirmware()
    {
        auto& world = m_world.world;
        const auto tab = device::UtilitiesViewController::create();
        tab->awakeFromNib();
        static_cast<support::FakeView&>(*tab->view()).press("buttonUpdateFirmware");
        world.alerts.forget();
        world.urlFetch.answer(m_bytes);
        try {
            tab->serialPortDidReceiveData(m_world.port(), "9.50\n\r");
        } catch (const std::out_of_range&) {
            check(fuzz::isUtf8(m_bytes) && fuzz::unitsOf(m_bytes) < 31, "only a text that is too short is no answer");
            check(world.alerts.shown().empty(), "it is not told");
            return;
        }
        check(!fuzz::isUtf8(m_bytes) || fuzz::unitsOf(m_bytes) >= 31, "the answer is long enough");
        check(world.alerts.shown().size() == 1, "there is an update, or none is needed");
        check(tab->firmwareUpdate().data().has_value() == fuzz::isUtf8(m_bytes), "what is text is kept");
    }

private:
    void expectTitle(const char* title)
    {
        const auto& shown = m_world.world.alerts.shown();
        check(shown.size() == (title == nullptr ? 0 : 1), "one alert, or none");
        check(title == nullptr || shown[0].messageText == title, "the alert that belongs to the reply");
        m_world.checkAlerts();
    }

    fuzz::TabWorld m_world;
    std::string m_bytes;
    web::Reply m_reply;
    json m_body;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::array kHandlers{&Handlers::login, &Handlers::load, &Handlers::save, &Handlers::registration,
                                   &Handlers::latestFirmware};
    fuzz::Input input(data, size);
    const auto handler = kHandlers[input.below(kHandlers.size())];
    Handlers handlers(input.rest());
    (handlers.*handler)();
    return 0;
}
