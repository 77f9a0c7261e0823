#include "ctl/Arguments.h"

#include "ctl/Help.h"

#include <algorithm>
#include <array>
#include <utility>

#include <getopt.h>

namespace vorrano::ctl {

namespace {

constexpr int kHelp = 'h';
constexpr int kVersion = 'v';
constexpr int kPort = 'p';
constexpr int kAll = 'a';
constexpr int kJson = 'j';
constexpr int kForce = 'f';
constexpr int kSsid = 256;
constexpr int kSecurity = 257;
constexpr int kPasswordFile = 258;

constexpr std::array kOptions{
    option{"help", no_argument, nullptr, kHelp},
    option{"version", no_argument, nullptr, kVersion},
    option{"port", required_argument, nullptr, kPort},
    option{"all", no_argument, nullptr, kAll},
    option{"json", no_argument, nullptr, kJson},
    option{"force", no_argument, nullptr, kForce},
    option{"ssid", required_argument, nullptr, kSsid},
    option{"security", required_argument, nullptr, kSecurity},
    option{"password-file", required_argument, nullptr, kPasswordFile},
    option{nullptr, 0, nullptr, 0},
};
// With the dash the verb and its operands come in their places, and options after them are options under every
// environment. With the colon an option that lacks its value is told from an unknown one.
constexpr const char* kShortOptions = "-:hvp:ajf";
constexpr int kOperand = 1; // getopt's own code

// What the options say, and which of them there were.
struct Options {
    Arguments arguments;
    std::vector<int> given;
    bool help = false;
    bool version = false;
};

const option* find(int code)
{
    return std::find_if(kOptions.begin(), kOptions.end() - 1, [&](const auto& one) { return one.val == code; });
}

bool isOption(int code) { return find(code)->name != nullptr; }

std::string nameOf(int code) { return std::string("--") + find(code)->name; }

void take(Options& options, int code)
{
    auto& arguments = options.arguments;
    options.given.push_back(code);
    const std::string value = optarg == nullptr ? "" : optarg;
    switch (code) {
    case kHelp:
        options.help = true;
        break;
    case kVersion:
        options.version = true;
        break;
    case kPort:
        arguments.ports.push_back(value);
        break;
    case kAll:
        arguments.all = true;
        break;
    case kJson:
        arguments.json = true;
        break;
    case kForce:
        arguments.force = true;
        break;
    case kSsid:
        arguments.ssid = value;
        break;
    case kSecurity:
        arguments.security = value;
        break;
    default:
        arguments.passwordFile = value;
        break;
    }
}

// The name of the first long option that is not spelled out: getopt(3) would take "--pass" for "--password-file". Its
// value may be a secret that stands there by mistake.
std::optional<std::string> unknownLongOption(const std::vector<std::string>& words)
{
    for (const auto& word : words) {
        if (word == "--") {
            break;
        }
        const auto name = word.substr(0, word.find('='));
        const auto isNamed = [&](const auto& one) { return one.name != nullptr && name.substr(2) == one.name; };
        if (word.starts_with("--") && std::none_of(kOptions.begin(), kOptions.end(), isNamed)) {
            return name;
        }
    }
    return std::nullopt;
}

// The words' options, and what is left: the verb and its operands.
std::variant<Options, Answer> optionsOf(const std::vector<std::string>& words)
{
    if (const auto unknown = unknownLongOption(words)) {
        return refusal("Unknown option '" + *unknown + "'.");
    }
    std::vector<std::string> copies{std::string(kProgramName)};
    copies.insert(copies.end(), words.begin(), words.end());
    std::vector<char*> argv;
    std::transform(copies.begin(), copies.end(), std::back_inserter(argv), [](auto& word) { return word.data(); });
    argv.push_back(nullptr);
    const auto argc = static_cast<int>(copies.size());

    Options options;
    opterr = 0;
    optind = 0; // from the beginning, also in a second call
    int code = 0;
    while ((code = getopt_long(argc, argv.data(), kShortOptions, kOptions.data(), nullptr)) != -1) {
        if (code == ':') {
            return refusal("'" + nameOf(optopt) + "' needs a value.");
        }
        if (code == '?') {
            return isOption(optopt) ? refusal("'" + nameOf(optopt) + "' takes no value.")
                                    : refusal(std::string("Unknown option '-") + static_cast<char>(optopt) + "'.");
        }
        if (code == kOperand) {
            options.arguments.operands.emplace_back(optarg);
        } else {
            take(options, code);
        }
    }
    for (int i = optind; i < argc; ++i) {
        options.arguments.operands.emplace_back(argv[static_cast<std::size_t>(i)]);
    }
    return options;
}

// What each verb takes: so many operands, these options.
struct Form {
    std::string_view name;
    Verb verb;
    std::size_t fewest;
    std::size_t most;
    std::vector<int> options;
};

const std::vector<Form>& forms()
{
    static const std::vector<Form> kForms{
        {"list", Verb::List, 0, 0, {kJson}},
        {"get", Verb::Get, 1, 1, {kPort, kAll, kJson}},
        {"set", Verb::Set, 1, 2, {kPort, kAll, kJson, kPasswordFile}},
        {"wifi", Verb::Wifi, 0, 0, {kPort, kAll, kJson, kSsid, kSecurity, kPasswordFile}},
        {"reset", Verb::Reset, 1, 1, {kPort, kAll, kJson}},
        {"update", Verb::Update, 1, 1, {kPort, kAll, kJson, kForce}},
    };
    return kForms;
}

std::optional<Answer> misuseOf(const Form& form, const Options& options)
{
    for (const int code : options.given) {
        if (std::find(form.options.begin(), form.options.end(), code) == form.options.end()) {
            return refusal("'" + std::string(form.name) + "' takes no " + nameOf(code) + ".");
        }
    }
    const auto& arguments = options.arguments;
    if (arguments.operands.size() < form.fewest) {
        return refusal("'" + std::string(form.name) + "' needs an argument.");
    }
    if (arguments.operands.size() > form.most) {
        return refusal("'" + std::string(form.name) + "' takes no further argument.");
    }
    if (arguments.all && !arguments.ports.empty()) {
        return refusal("--port and --all exclude each other.");
    }
    return std::nullopt;
}

} // namespace

Answer refusal(std::string_view reason) { return {ExitStatus::Refused, std::string(reason)}; }

std::variant<Arguments, Answer> argumentsOf(const std::vector<std::string>& words, std::string_view version)
{
    auto read = optionsOf(words);
    if (std::holds_alternative<Answer>(read)) {
        return std::get<Answer>(std::move(read));
    }
    auto& options = std::get<Options>(read);
    if (options.version) {
        return Answer{ExitStatus::Done, std::string(kProgramName) + " " + std::string(version) + "\n"};
    }
    auto& operands = options.arguments.operands;
    if (operands.empty()) {
        return options.help ? Answer{ExitStatus::Done, help()} : refusal("A verb is missing.");
    }
    const auto name = operands.front();
    const auto form = std::find_if(forms().begin(), forms().end(), [&](const auto& one) { return one.name == name; });
    if (form == forms().end()) {
        return refusal("Unknown verb '" + name + "'.");
    }
    operands.erase(operands.begin());
    if (options.help) {
        return Answer{ExitStatus::Done, helpOf(form->verb)};
    }
    if (auto misuse = misuseOf(*form, options)) {
        return *std::move(misuse);
    }
    options.arguments.verb = form->verb;
    return std::move(options.arguments);
}

} // namespace vorrano::ctl
