#include "app/program/Program.h"

int main(int argc, char** argv)
{
    return vorrano::program::run(argc, argv, vorrano::program::thisComputer(VORRANO_SERVICE_BASE_URL));
}
