#include "session/GlobalVariables.h"

#include <gtest/gtest.h>

using vorrano::session::GlobalVariables;

namespace {

class SessionRecord : public testing::Test {
protected:
    ~SessionRecord() override { GlobalVariables::releaseShared(); }
};

TEST_F(SessionRecord, IsUnsetBeforeAnyLogin)
{
    EXPECT_EQ(GlobalVariables::getGlobalAccountID(), std::nullopt);
    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), std::nullopt);
    EXPECT_FALSE(GlobalVariables::getUserIsLoggedIn() == "1");
}

TEST_F(SessionRecord, IsOneObject)
{
    EXPECT_EQ(&GlobalVariables::sharedInstance(), &GlobalVariables::sharedInstance());
}

TEST_F(SessionRecord, NullClearsAValue)
{
    GlobalVariables::setGlobalAccountID("1234");

    GlobalVariables::setGlobalAccountID(std::nullopt);

    EXPECT_EQ(GlobalVariables::getGlobalAccountID(), std::nullopt);
}

TEST_F(SessionRecord, ChoosingToCreateAnAccountLeavesTheAccountIDAlone)
{
    GlobalVariables::setUserIsLoggedIn("0");

    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), "0");
    EXPECT_EQ(GlobalVariables::getGlobalAccountID(), std::nullopt);
}

TEST_F(SessionRecord, KeepsAnEmptyTextApartFromNull)
{
    GlobalVariables::setGlobalAccountID("");

    EXPECT_EQ(GlobalVariables::getGlobalAccountID(), "");
}

TEST_F(SessionRecord, BeginsAnewAfterItsRelease)
{
    GlobalVariables::setUserIsLoggedIn("1");

    GlobalVariables::releaseShared();

    EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), std::nullopt);
}

struct Property {
    std::string name;
    GlobalVariables::Value (*get)();
    void (*set)(GlobalVariables::Value);
    const GlobalVariables::Value& (GlobalVariables::*property)() const;
};

void PrintTo(const Property& property, std::ostream* out) { *out << property.name; }

const std::vector<Property> kProperties = {
    {"GlobalAccountID", GlobalVariables::getGlobalAccountID, GlobalVariables::setGlobalAccountID,
     &GlobalVariables::strGlobalAccountID},
    {"GlobalTempType", GlobalVariables::getGlobalTempType, GlobalVariables::setGlobalTempType,
     &GlobalVariables::strGlobalTempType},
    {"GlobalMobileDeviceID", GlobalVariables::getGlobalMobileDeviceID, GlobalVariables::setGlobalMobileDeviceID,
     &GlobalVariables::strGlobalMobileDeviceID},
    {"GlobalDeviceToken", GlobalVariables::getGlobalDeviceToken, GlobalVariables::setGlobalDeviceToken,
     &GlobalVariables::strGlobalDeviceToken},
    {"GlobalIsGuest", GlobalVariables::getGlobalIsGuest, GlobalVariables::setGlobalIsGuest,
     &GlobalVariables::strGlobalIsGuest},
    {"UserIsLoggedIn", GlobalVariables::getUserIsLoggedIn, GlobalVariables::setUserIsLoggedIn,
     &GlobalVariables::strUserIsLoggedIn},
};

class SessionProperty : public SessionRecord, public testing::WithParamInterface<Property> {};

TEST_P(SessionProperty, IsSetAndReadAloneThroughTheClass)
{
    GetParam().set("a value");

    EXPECT_EQ((GlobalVariables::sharedInstance().*GetParam().property)(), "a value");
    for (const auto& property : kProperties) {
        const auto expected = property.name == GetParam().name ? GlobalVariables::Value("a value") : std::nullopt;
        EXPECT_EQ(property.get(), expected) << property.name;
    }
}

std::string nameOf(const testing::TestParamInfo<Property>& property) { return property.param.name; }

INSTANTIATE_TEST_SUITE_P(Each, SessionProperty, testing::ValuesIn(kProperties), nameOf);

} // namespace
