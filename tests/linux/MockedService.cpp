#include "linux/MockedService.h"

#include "linux/EventLoop.h"
#include "linux/PrivateBus.h"

#include <chrono>
#include <csignal>

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <gtest/gtest.h>
#include <sys/prctl.h>

namespace vorrano::support {

MockedService::MockedService(const QString& busName, const QString& templateName)
    : m_busName(busName)
{
    PrivateBus::instance();
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    m_process.start(QStringLiteral("/usr/bin/python3"),
                    {QStringLiteral("-m"), QStringLiteral("dbusmock"), QStringLiteral("--system"),
                     QStringLiteral("--template"), templateName});
    // A busy computer takes its time to start an interpreter.
    EXPECT_TRUE(spinUntil([this] { return isOnTheBus(); }, std::chrono::minutes(1)));
}

MockedService::~MockedService()
{
    m_process.kill();
    m_process.waitForFinished();
    // The bus learns of the end a little later. Until then the next service would seem to be there already.
    EXPECT_TRUE(spinUntil([this] { return !isOnTheBus(); }, std::chrono::minutes(1)));
}

bool MockedService::isOnTheBus() const
{
    return QDBusConnection::systemBus().interface()->isServiceRegistered(m_busName).value();
}

QVariant MockedService::call(const QString& path, const QString& interface, const QString& method,
                             const QVariantList& arguments) const
{
    auto message = QDBusMessage::createMethodCall(m_busName, path, interface, method);
    message.setArguments(arguments);
    const auto answer = QDBusConnection::systemBus().call(message);
    EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage) << answer.errorMessage().toStdString();
    return answer.arguments().value(0);
}

QVariant MockedService::mock(const QString& path, const QString& method, const QVariantList& arguments) const
{
    return call(path, QStringLiteral("org.freedesktop.DBus.Mock"), method, arguments);
}

int MockedService::callsOf(const QString& path, const QString& method) const
{
    const auto calls = mock(path, QStringLiteral("GetMethodCalls"), {method}).value<QDBusArgument>();
    int count = 0;
    calls.beginArray();
    while (!calls.atEnd()) {
        calls.beginStructure();
        quint64 time = 0;
        QVariantList arguments;
        calls >> time >> arguments;
        calls.endStructure();
        ++count;
    }
    calls.endArray();
    return count;
}

void MockedService::freeze() { kill(static_cast<pid_t>(m_process.processId()), SIGSTOP); }

void MockedService::thaw() { kill(static_cast<pid_t>(m_process.processId()), SIGCONT); }

} // namespace vorrano::support
