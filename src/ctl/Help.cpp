#include "ctl/Help.h"

#include "ctl/Arguments.h"

namespace vorrano::ctl {

namespace {

constexpr std::string_view kWhichDevices = R"(
Which devices:
  -p, --port PATH|NODE  This port, as 'vorranoctl list' shows it; may be repeated.
  -a, --all             Every Vorrano, all at the same time.
Without either: the one Vorrano that is connected.
)";

constexpr std::string_view kOutput = R"(
Output:
  -j, --json            One JSON object for each device.
  -h, --help            Show this help.
)";

constexpr std::string_view kList = R"(Usage: vorranoctl list [--json]

Lists the serial ports: path, device node, whether it is a Vorrano's, adapter,
serial number, whether it may be opened, and which program has it open.

Output:
  -j, --json            One JSON object for each port.
  -h, --help            Show this help.
)";

constexpr std::string_view kGet = R"(Usage: vorranoctl get ITEM [--port PATH|NODE]... [--all] [--json]

Asks for one of:
  power                 the power status
  adc                   the version of the analogue-digital converter
  connection            the connection to the Wi-Fi network
  mac                   the MAC address
  firmware              the version of the firmware
  wifi-firmware         the version of the Wi-Fi module's firmware
  ssid                  the stored network name
  password              the stored network password
  throttle              the throttle
  unit                  the temperature unit
)";

constexpr std::string_view kSet = R"(Usage: vorranoctl set ITEM VALUE [--port PATH|NODE]... [--all] [--json]
       vorranoctl set password|wep-key [--password-file FILE|-] [...]

Stores one of:
  ssid                  the network name, at most 32 characters
  security              Open, WEP-128, WPA1, "WPA mixed", WPA2 or WEP-64
  throttle              a number from 21 to 90
  unit                  Fahrenheit or Celsius
  password, wep-key     a secret, which is never taken from an argument

  --password-file FILE  The file's one line is the secret; '-' is standard input.
                        Without it the terminal asks for the secret.
)";

constexpr std::string_view kWifi = R"(Usage: vorranoctl wifi --ssid NAME --security TYPE [--password-file FILE|-]
                       [--port PATH|NODE]... [--all] [--json]

Gives the device its Wi-Fi network.

  --ssid NAME           the network name, at most 32 characters
  --security TYPE       Open, WEP-128, WPA1, "WPA mixed", WPA2 or WEP-64
  --password-file FILE  The file's one line is the password, or the WEP key; '-' is
                        standard input. Without it the terminal asks for it. An
                        open network has none.
)";

constexpr std::string_view kReset = R"(Usage: vorranoctl reset device|modem [--port PATH|NODE]... [--all] [--json]

Resets the device, or its Wi-Fi modem. It does not wait for the device.
)";

constexpr std::string_view kUpdate = R"(Usage: vorranoctl update FILE [--force] [--port PATH|NODE]... [--all] [--json]

Sends a firmware image to the device. The image takes 0.1 s for each of its lines.
Standard error shows the progress. The computer does not sleep meanwhile.

  -f, --force           Send a file that is no Intel HEX file, too.

An upload that was cut off leaves the device without a firmware, so Ctrl-C has to
be pressed twice.
)";

constexpr std::string_view kProgram = R"(Usage: vorranoctl VERB [OPTIONS]

Sets up a Vorrano over its USB cable, from a terminal or a script.

Verbs:
  list                  list the serial ports
  get ITEM              ask for a value
  set ITEM VALUE        store a value
  wifi                  give the device its Wi-Fi network
  reset device|modem    reset the device or its modem
  update FILE           send a firmware image

Options:
  -h, --help            Show this help; after a verb, the verb's.
  -v, --version         Show the version.

Exit status: 0 done; 1 a device failed; 2 arguments or input refused; 3 no
Vorrano; 4 not allowed to open the port.
)";

std::string withDevices(std::string_view text) { return std::string(text).append(kWhichDevices).append(kOutput); }

} // namespace

std::string help() { return std::string(kProgram); }

std::string helpOf(Verb verb)
{
    switch (verb) {
    case Verb::List:
        return std::string(kList);
    case Verb::Get:
        return withDevices(kGet);
    case Verb::Set:
        return withDevices(kSet);
    case Verb::Wifi:
        return withDevices(kWifi);
    case Verb::Reset:
        return withDevices(kReset);
    case Verb::Update:
        return withDevices(kUpdate);
    }
    return help();
}

} // namespace vorrano::ctl
