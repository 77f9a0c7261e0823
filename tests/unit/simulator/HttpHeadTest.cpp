#include "simulator/service/HttpHead.h"

#include <gtest/gtest.h>

#include <string>

namespace vorrano::simulator {
namespace {

const std::string kHead = "GET /a/b?c HTTP/1.1\r\nHost: x y\r\n\r\n";

TEST(AnHttpHead, EndsWithItsEmptyLineWhereverItIsCut)
{
    for (std::size_t length = 0; length < kHead.size(); ++length) {
        EXPECT_EQ(lengthOfHead(kHead.substr(0, length)), std::nullopt) << length;
    }

    EXPECT_EQ(lengthOfHead(kHead + "GET /next"), kHead.size());
}

TEST(AnHttpHead, NamesItsTargetBetweenTheBlanksOfItsFirstLine)
{
    EXPECT_EQ(targetOfHead(kHead), "/a/b?c");
    EXPECT_EQ(targetOfHead("GET /a\r\n\r\n"), "/a");
    EXPECT_EQ(targetOfHead("GET\r\nHost: /x y\r\n\r\n"), "GET");
    EXPECT_EQ(targetOfHead("GET \r\nHost: /x y\r\n\r\n"), "");
    EXPECT_EQ(targetOfHead(""), "");
}

TEST(AnHttpTarget, NamesAMethodOfTheServiceOnly)
{
    EXPECT_EQ(methodOfTarget("/VorranoAPI/RestServiceImpl.svc/validateLogin/a/b"), "validateLogin");
    EXPECT_EQ(methodOfTarget("/VorranoAPI/RestServiceImpl.svc/validateLogin"), "validateLogin");
    EXPECT_EQ(methodOfTarget("/VorranoAPI/RestServiceImpl.svc/"), "");
    EXPECT_EQ(methodOfTarget("/elsewhere/validateLogin/"), "");
}

} // namespace
} // namespace vorrano::simulator
