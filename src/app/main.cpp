#include "app/command_line/CommandLine.h"
#include "app/program/Program.h"

int main(int argc, char** argv)
{
    using namespace vorrano;
    constexpr command_line::Program kProgram{"vorrano-setup", "Sets up a Vorrano over its USB cable."};
    if (const auto status = command_line::answer(argc, argv, kProgram)) {
        return *status;
    }
    return program::run(argc, argv, program::thisComputer(VORRANO_SERVICE_BASE_URL));
}
