#include "session/GlobalVariables.h"

#include <memory>
#include <utility>

namespace vorrano::session {

namespace {
std::unique_ptr<GlobalVariables> s_shared;
}

GlobalVariables& GlobalVariables::sharedInstance()
{
    if (!s_shared) {
        s_shared = std::make_unique<GlobalVariables>();
    }
    return *s_shared;
}

void GlobalVariables::releaseShared() { s_shared.reset(); }

void GlobalVariables::setStrGlobalAccountID(Value value) { m_globalAccountID = std::move(value); }
void GlobalVariables::setStrGlobalTempType(Value value) { m_globalTempType = std::move(value); }
void GlobalVariables::setStrGlobalMobileDeviceID(Value value) { m_globalMobileDeviceID = std::move(value); }
void GlobalVariables::setStrGlobalDeviceToken(Value value) { m_globalDeviceToken = std::move(value); }
void GlobalVariables::setStrGlobalIsGuest(Value value) { m_globalIsGuest = std::move(value); }
void GlobalVariables::setStrUserIsLoggedIn(Value value) { m_userIsLoggedIn = std::move(value); }

GlobalVariables::Value GlobalVariables::getGlobalAccountID() { return sharedInstance().strGlobalAccountID(); }
GlobalVariables::Value GlobalVariables::getGlobalTempType() { return sharedInstance().strGlobalTempType(); }
GlobalVariables::Value GlobalVariables::getGlobalMobileDeviceID() { return sharedInstance().strGlobalMobileDeviceID(); }
GlobalVariables::Value GlobalVariables::getGlobalDeviceToken() { return sharedInstance().strGlobalDeviceToken(); }
GlobalVariables::Value GlobalVariables::getGlobalIsGuest() { return sharedInstance().strGlobalIsGuest(); }
GlobalVariables::Value GlobalVariables::getUserIsLoggedIn() { return sharedInstance().strUserIsLoggedIn(); }

void GlobalVariables::setGlobalAccountID(Value value) { sharedInstance().setStrGlobalAccountID(std::move(value)); }
void GlobalVariables::setGlobalTempType(Value value) { sharedInstance().setStrGlobalTempType(std::move(value)); }
void GlobalVariables::setGlobalMobileDeviceID(Value value)
{
    sharedInstance().setStrGlobalMobileDeviceID(std::move(value));
}
void GlobalVariables::setGlobalDeviceToken(Value value) { sharedInstance().setStrGlobalDeviceToken(std::move(value)); }
void GlobalVariables::setGlobalIsGuest(Value value) { sharedInstance().setStrGlobalIsGuest(std::move(value)); }
void GlobalVariables::setUserIsLoggedIn(Value value) { sharedInstance().setStrUserIsLoggedIn(std::move(value)); }

} // namespace vorrano::session
