#include <cstdio>
#include <cstdlib>
#include <string>

#include <QCoreApplication>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

constexpr const char* kPreload = "libumockdev-preload.so.0";

bool isPreloaded()
{
    const char* preloaded = std::getenv("LD_PRELOAD");
    return preloaded != nullptr && std::string(preloaded).find(kPreload) != std::string::npos;
}

} // namespace

// Mocked devices are seen only with umockdev's library loaded before all others.
int main(int argc, char** argv)
{
    if (!isPreloaded()) {
        setenv("LD_PRELOAD", kPreload, 1);
        execv("/proc/self/exe", argv);
        std::perror("execv");
        return EXIT_FAILURE;
    }
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
