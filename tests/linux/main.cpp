#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include <QCoreApplication>
#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

namespace {

// Who is not root may make networks as the root of a user namespace. It has to be entered before any thread begins, and
// needs a loopback of its own.
void becomeAbleToMakeNetworks()
{
    const auto user = std::to_string(getuid());
    const auto group = std::to_string(getgid());
    if (getuid() == 0 || unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) {
        return;
    }
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << "0 " + user + " 1";
    std::ofstream("/proc/self/gid_map") << "0 " + group + " 1";
    if (std::system("ip link set lo up") != 0) {
        std::perror("ip");
    }
}

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    becomeAbleToMakeNetworks();
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
