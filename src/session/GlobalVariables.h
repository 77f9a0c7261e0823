#pragma once

#include <optional>
#include <string>

namespace vorrano::session {

// Who uses the program in this run: the account signed in to, or about to be created. In memory only; each run begins
// with every value unset.
//
// Every value is a text or unset, also where it stands for a number or for yes and no. Signed in is exactly a
// strUserIsLoggedIn of "1"; "0" says that a new account is being created. Values that nothing in the program sets are
// part of the record all the same.
// Threads: the main thread.
class GlobalVariables {
public:
    using Value = std::optional<std::string>;

    // Made by the first call; the same object until releaseShared().
    [[nodiscard]] static GlobalVariables& sharedInstance();
    // The program's end: the next call begins a new record.
    static void releaseShared();

    [[nodiscard]] const Value& strGlobalAccountID() const { return m_globalAccountID; }
    [[nodiscard]] const Value& strGlobalTempType() const { return m_globalTempType; }
    [[nodiscard]] const Value& strGlobalMobileDeviceID() const { return m_globalMobileDeviceID; }
    [[nodiscard]] const Value& strGlobalDeviceToken() const { return m_globalDeviceToken; }
    [[nodiscard]] const Value& strGlobalIsGuest() const { return m_globalIsGuest; }
    [[nodiscard]] const Value& strUserIsLoggedIn() const { return m_userIsLoggedIn; }

    void setStrGlobalAccountID(Value value);
    void setStrGlobalTempType(Value value);
    void setStrGlobalMobileDeviceID(Value value);
    void setStrGlobalDeviceToken(Value value);
    void setStrGlobalIsGuest(Value value);
    void setStrUserIsLoggedIn(Value value);

    // The same on the shared instance; what everybody uses.
    [[nodiscard]] static Value getGlobalAccountID();
    [[nodiscard]] static Value getGlobalTempType();
    [[nodiscard]] static Value getGlobalMobileDeviceID();
    [[nodiscard]] static Value getGlobalDeviceToken();
    [[nodiscard]] static Value getGlobalIsGuest();
    [[nodiscard]] static Value getUserIsLoggedIn();

    static void setGlobalAccountID(Value value);
    static void setGlobalTempType(Value value);
    static void setGlobalMobileDeviceID(Value value);
    static void setGlobalDeviceToken(Value value);
    static void setGlobalIsGuest(Value value);
    static void setUserIsLoggedIn(Value value);

private:
    Value m_globalAccountID;
    Value m_globalTempType;
    Value m_globalMobileDeviceID;
    Value m_globalDeviceToken;
    Value m_globalIsGuest;
    Value m_userIsLoggedIn;
};

} // namespace vorrano::session
