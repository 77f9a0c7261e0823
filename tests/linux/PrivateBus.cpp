#include "linux/PrivateBus.h"

#include <csignal>

#include <QFile>
#include <gtest/gtest.h>
#include <sys/prctl.h>

namespace vorrano::support {

namespace {

void write(const QString& path, const QString& text)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text.toUtf8());
}

} // namespace

PrivateBus& PrivateBus::instance()
{
    static PrivateBus bus;
    return bus;
}

PrivateBus::PrivateBus()
{
    writeConfiguration();
    writeService(QStringLiteral("org.freedesktop.NetworkManager"));
    writeService(QStringLiteral("org.freedesktop.login1"));
    m_daemon.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    m_daemon.start(QStringLiteral("dbus-daemon"),
                   {QStringLiteral("--nofork"), QStringLiteral("--print-address"), QStringLiteral("--config-file"),
                    m_folder.filePath(QStringLiteral("bus.conf"))});
    while (!m_daemon.canReadLine() && m_daemon.waitForReadyRead(30'000)) {
    }
    const auto address = m_daemon.readLine().trimmed();
    EXPECT_FALSE(address.isEmpty()) << m_daemon.readAllStandardError().toStdString();
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", address);
}

PrivateBus::~PrivateBus()
{
    m_daemon.kill();
    m_daemon.waitForFinished();
}

bool PrivateBus::wasAskedToStart(const QString& service) const { return QFile::exists(markerOf(service)); }

void PrivateBus::forgetThatItWasAskedToStart(const QString& service) const { QFile::remove(markerOf(service)); }

QString PrivateBus::markerOf(const QString& service) const { return m_folder.filePath(service + ".started"); }

void PrivateBus::writeConfiguration() const
{
    write(m_folder.filePath(QStringLiteral("bus.conf")),
          QStringLiteral(
              "<busconfig><type>session</type><listen>unix:dir=%1</listen><servicedir>%1</servicedir>"
              "<policy context='default'><allow send_destination='*' eavesdrop='true'/><allow eavesdrop='true'/>"
              "<allow own='*'/></policy></busconfig>")
              .arg(m_folder.path()));
}

void PrivateBus::writeService(const QString& service) const
{
    write(m_folder.filePath(service + ".service"),
          QStringLiteral("[D-BUS Service]\nName=%1\nExec=/bin/sh -c \"touch %2; exit 1\"\n")
              .arg(service, markerOf(service)));
}

} // namespace vorrano::support
