#include "platform/linux/SystemBus.h"

#include <QDBusConnection>
#include <QDBusError>

namespace vorrano::linux_platform {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

QDBusMessage methodCall(const QString& service, const QString& path, const QString& interface, const QString& method,
                        const QVariantList& arguments)
{
    auto call = QDBusMessage::createMethodCall(service, path, interface, method);
    call.setAutoStartService(false);
    call.setArguments(arguments);
    return call;
}

TimedCalls::TimedCalls(milliseconds limit)
    : m_deadline(steady_clock::now() + limit)
{}

QDBusPendingCall TimedCalls::send(const QDBusMessage& call) const
{
    const auto left = std::chrono::ceil<milliseconds>(m_deadline - steady_clock::now());
    if (left <= milliseconds::zero()) {
        return QDBusPendingCall::fromError(QDBusError(QDBusError::NoReply, QString()));
    }
    return QDBusConnection::systemBus().asyncCall(call, static_cast<int>(left.count()));
}

QDBusMessage TimedCalls::answerTo(QDBusPendingCall call)
{
    call.waitForFinished();
    return call.reply();
}

bool TimedCalls::isMissing(const QDBusMessage& answer)
{
    switch (QDBusError(answer).type()) {
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
    case QDBusError::Disconnected:
        return true;
    default:
        return false;
    }
}

} // namespace vorrano::linux_platform
