#include "simulator/service/SimulatedService.h"

#include <gtest/gtest.h>

#include <string>

namespace vorrano::simulator {
namespace {

class ServiceInMemory : public testing::Test {
protected:
    std::string body(const std::string& path) { return service.answer("/VorranoAPI/RestServiceImpl.svc/" + path).body; }

    SimulatedService service;
    std::string id = service.addAccount({{"AccountLogin", "ada"},
                                         {"Password", "secret1"},
                                         {"Email", "ada@vorrano.example"},
                                         {"Name", "Ada \"A\" L\xC3\xB6w"}});
};

TEST_F(ServiceInMemory, GivesTheIdOfAnAccountByItsNameOrItsAddress)
{
    EXPECT_EQ(body("validateLogin/ada/secret1"), R"({"data":[{"Id":"1234"}]})");
    EXPECT_EQ(body("validateLogin/ada@vorrano.example/secret1"), R"({"data":[{"Id":"1234"}]})");
}

TEST_F(ServiceInMemory, AnswersZeroToAWrongPassword)
{
    EXPECT_EQ(body("validateLogin/ada/Secret1"), R"({"data":[{"Id":"0"}]})");
    EXPECT_EQ(body("validateLogin//"), R"({"data":[{"Id":"0"}]})");
}

TEST_F(ServiceInMemory, GivesAnAccountsRecord)
{
    const auto record = body("getAccounts/" + id);

    EXPECT_NE(record.find(R"("AccountLogin":"ada")"), std::string::npos);
    EXPECT_NE(record.find("\"Name\":\"Ada \\\"A\\\" L\xC3\xB6w\""), std::string::npos);
    EXPECT_NE(record.find(R"("GuestPassword":"")"), std::string::npos);
}

TEST_F(ServiceInMemory, GivesNoRecordOfAnUnknownAccount) { EXPECT_EQ(body("getAccounts/99"), R"({"data":[]})"); }

TEST_F(ServiceInMemory, TakesANewAccountFromItsAddress)
{
    const auto reply =
        body("insertAccount/bob//pass%20word/b@x.example/nil/1%20Road/nil/Town/State/Country/12345/guest%2Fpass");

    EXPECT_EQ(reply, R"({"data":[{"Id":"1235"}]})");
    const auto& values = service.accounts().back().values;
    EXPECT_EQ(values.at("AccountLogin"), "bob");
    EXPECT_EQ(values.at("Password"), "pass word");
    EXPECT_EQ(values.at("Name"), "");
    EXPECT_EQ(values.at("Address1"), "1 Road");
    EXPECT_EQ(values.at("ZipCode"), "12345");
    EXPECT_EQ(values.at("GuestPassword"), "guest/pass");
}

TEST_F(ServiceInMemory, RefusesANameThatIsTaken)
{
    EXPECT_EQ(body("insertAccount/ada//p/e/n/a/b/c/s/c/z/g"), R"({"data":[{"Id":"-1"}]})");
    EXPECT_EQ(service.accounts().size(), 1U);
}

TEST_F(ServiceInMemory, ChangesAnAccountThroughTheLongFormOfItsAddress)
{
    const auto reply = body("getAccounts/1234//newpass/ada@x.example/Ada/Road/nil/Town/State/Country/1/guest12");

    EXPECT_EQ(reply, R"({"data":[{"Id":"1234"}]})");
    EXPECT_EQ(service.accounts().front().values.at("Password"), "newpass");
    EXPECT_EQ(service.accounts().front().values.at("AccountLogin"), "ada");
}

TEST_F(ServiceInMemory, WantsBothSlashesAfterTheAccount)
{
    EXPECT_EQ(service.answer("/VorranoAPI/RestServiceImpl.svc/insertAccount/bob/p/e/n/a/b/c/s/c/z/g").status, 404);
}

TEST_F(ServiceInMemory, RegistersAVorrano)
{
    body("insertAccountVorranos/1234/00:1E:5C:0A:1B:2C/Living%20room");

    ASSERT_EQ(service.registrations().size(), 1U);
    EXPECT_EQ(service.registrations()[0].accountId, "1234");
    EXPECT_EQ(service.registrations()[0].macAddress, "00:1E:5C:0A:1B:2C");
    EXPECT_EQ(service.registrations()[0].name, "Living room");
}

TEST_F(ServiceInMemory, NamesTheLatestFirmwareFromCharacter27On)
{
    service.setLatestFirmware("9.6");

    EXPECT_EQ(body("GetLatestFirmware/9").substr(27), "9.6}");
}

TEST_F(ServiceInMemory, HasNoOtherPages)
{
    EXPECT_EQ(service.answer("/").status, 404);
    EXPECT_EQ(service.answer("/VorranoAPI/RestServiceImpl.svc/").status, 404);
    EXPECT_EQ(service.answer("/VorranoAPI/RestServiceImpl.svc/deleteAccount/1234").status, 404);
    EXPECT_EQ(service.answer("/VorranoAPI/RestServiceImpl.svc/validateLogin/ada/se/cret").status, 404);
}

TEST_F(ServiceInMemory, LivesWithBrokenEscapes)
{
    EXPECT_EQ(body("validateLogin/%/%4"), R"({"data":[{"Id":"0"}]})");
    EXPECT_EQ(body("validateLogin/%zz/%C3"), R"({"data":[{"Id":"0"}]})");
}

} // namespace
} // namespace vorrano::simulator
