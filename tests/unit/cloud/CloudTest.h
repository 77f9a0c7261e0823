#pragma once

#include "cloud/LoginViewController.h"
#include "platform/Alerts.h"
#include "session/GlobalVariables.h"
#include "support/World.h"

#include <gtest/gtest.h>

#include <string>

namespace vorrano::cloud {

inline const std::string kRoot = "https://service.example/VorranoAPI/RestServiceImpl.svc/";

inline platform::Alert alertOf(const std::string& title, const std::string& text)
{
    return {title, {"OK"}, text, platform::AlertStyle::Informational};
}

inline const platform::Alert kWifiNotConnected =
    alertOf("Wi-Fi not connected", "Please check your connection and try again");

inline std::string bodyWithId(const std::string& accountID) { return R"({"data":[{"Id":")" + accountID + R"("}]})"; }

// A reply of some shape.
struct ShapeCase {
    const char* name;
    std::string body;
};

// A world with an empty session.
struct CloudTest : testing::Test {
    void TearDown() override
    {
        session::GlobalVariables::releaseShared();
        LoginViewController::forgetNetworkScan();
    }

    // Whether a text is in none of the log's lines.
    void expectNotLogged(const std::string& secret) const
    {
        for (const auto& line : world.log.lines()) {
            EXPECT_EQ(line.find(secret), std::string::npos) << line;
        }
    }

    support::World world{"https://service.example"};
};

} // namespace vorrano::cloud
