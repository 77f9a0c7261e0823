#include "linux/NetworkNamespace.h"

#include <cstring>

#include <QProcess>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

namespace vorrano::support {

NetworkNamespace::NetworkNamespace()
    : m_former(open("/proc/thread-self/ns/net", O_RDONLY | O_CLOEXEC))
{
    EXPECT_EQ(unshare(CLONE_NEWNET), 0) << std::strerror(errno);
}

NetworkNamespace::~NetworkNamespace()
{
    EXPECT_EQ(setns(m_former, CLONE_NEWNET), 0) << std::strerror(errno);
    close(m_former);
}

void NetworkNamespace::ip(const std::string& arguments) const
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(QStringLiteral("ip"), QString::fromStdString(arguments).split(' '));
    EXPECT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 0) << "ip " << arguments;
}

void NetworkNamespace::addLink() const
{
    ip("link add net type veth peer name cable");
    ip("address add 192.0.2.2/24 dev net");
    ip("link set net up");
    plugCable();
    ip("-6 address add fd00::2/64 dev net nodad");
}

void NetworkNamespace::plugCable() const { ip("link set cable up"); }
void NetworkNamespace::pullCable() const { ip("link set cable down"); }

} // namespace vorrano::support
