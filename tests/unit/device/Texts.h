#pragma once

#include <string>

// The device tabs' texts that more than one file of tests expects, to the letter.
namespace vorrano::device {

inline const std::string kSSIDHasDollarSign =
    "SSID cannot have a '$' sign. You will need to change your routers Wifi SSID to not include the '$' sign";
inline const std::string kPasswordHasDollarSign =
    "Wifi Password cannot have a '$' sign. You will need to change your routers Wifi Password to not include the '$' "
    "sign";

inline const std::string kNoVorrano = "No Vorrano is connected. Plug it in with its USB cable.";
inline const std::string kOtherVorrano =
    "The Vorrano in use was unplugged. Another one is connected: choose this tab again to use it.";
inline const std::string kNotAllowed =
    "You are not allowed to use the Vorrano's port. Install the package of Vorrano Setup, or become a member of the "
    "group “dialout” and log in again.";
inline const std::string kInUse = "Another program is using the Vorrano's port. Close it to go on here.";
inline const std::string kInUseByKettle = "The program “kettle” is using the Vorrano's port. Close it to go on here.";

} // namespace vorrano::device
