#include "app/command_line/CommandLine.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace vorrano::command_line {

namespace {

// The exit status of a program whose answer did not go out.
constexpr int kUnwritten = 1;

// What the application object and the window system's plugins take for themselves, with one or two dashes.
constexpr std::array<std::string_view, 16> kQtOptionsWithValue{
    "platform", "platformpluginpath", "platformtheme", "plugin",      "qwindowgeometry", "geometry",
    "title",    "qwindowtitle",       "icon",          "qwindowicon", "session",         "style",
    "display",  "stylesheet",         "name",          "visual",
};
constexpr std::array<std::string_view, 8> kQtOptions{
    "reverse", "widgetcount", "testability", "qdevel", "qdebug", "nograb", "dograb", "qmljsdebugger",
};
constexpr std::array<std::string_view, 3> kQtOptionsWithEqualsSign{"style=", "stylesheet=", "qmljsdebugger="};

// The name of an option without its dashes, empty for anything else.
std::string_view optionName(std::string_view argument)
{
    if (argument.substr(0, 2) == "--") {
        return argument.substr(2);
    }
    return argument.substr(0, 1) == "-" ? argument.substr(1) : std::string_view{};
}

template <typename Names>
bool isOneOf(const Names& names, std::string_view name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool isQtOption(std::string_view name)
{
    return isOneOf(kQtOptions, name) ||
           std::any_of(kQtOptionsWithEqualsSign.begin(), kQtOptionsWithEqualsSign.end(),
                       [&](std::string_view start) { return name.substr(0, start.size()) == start; });
}

// The arguments that Qt leaves over, the program's name first. An option that lacks its value stays.
QStringList withoutQtOptions(int argc, char** argv, const Program& program)
{
    QStringList rest{QString::fromUtf8(program.name)};
    for (int i = 1; i < argc; ++i) {
        const auto name = optionName(argv[i]);
        if (isOneOf(kQtOptionsWithValue, name) && i + 1 < argc) {
            ++i;
        } else if (!isQtOption(name)) {
            rest << QString::fromLocal8Bit(argv[i]);
        }
    }
    return rest;
}

void printHelp(int argc, char** argv, const QCommandLineParser& parser)
{
    // The help's first line is made from the application object.
    const QCoreApplication application(argc, argv);
    std::fputs(parser.helpText().toLocal8Bit().constData(), stdout);
    std::puts("\nQt's own options, such as -platform, -style and -geometry, are understood as well.");
}

// The status to end with when all that was asked for has been printed. A full disk is told.
int afterPrinting(const Program& program)
{
    if (std::ferror(stdout) == 0 && std::fflush(stdout) == 0) {
        return 0;
    }
    std::fprintf(stderr, "%s: write error: %s\n", program.name, std::strerror(errno));
    return kUnwritten;
}

} // namespace

std::optional<int> answer(int argc, char** argv, const Program& program, QCommandLineParser& parser)
{
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help."));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Show the version."));
    parser.setApplicationDescription(QString::fromUtf8(program.description));
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.addOptions({help, version});

    if (!parser.parse(withoutQtOptions(argc, argv, program))) {
        return refuse(program, parser.errorText().toLocal8Bit().constData());
    }
    if (!parser.positionalArguments().isEmpty()) {
        const auto argument = parser.positionalArguments().constFirst();
        return refuse(program, QStringLiteral("Unexpected argument '%1'.").arg(argument).toLocal8Bit().constData());
    }
    if (parser.isSet(help)) {
        printHelp(argc, argv, parser);
        return afterPrinting(program);
    }
    if (parser.isSet(version)) {
        std::printf("%s %s\n", program.name, VORRANO_VERSION);
        return afterPrinting(program);
    }
    return std::nullopt;
}

std::optional<int> answer(int argc, char** argv, const Program& program)
{
    QCommandLineParser parser;
    return answer(argc, argv, program, parser);
}

int refuse(const Program& program, const char* reason)
{
    std::fprintf(stderr, "%s: %s\nTry '%s --help'.\n", program.name, reason, program.name);
    return kMisuse;
}

} // namespace vorrano::command_line
