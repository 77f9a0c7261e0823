#include "platform/linux/LogindStayAwake.h"

#include "platform/linux/SystemBus.h"

#include <QDBusConnection>
#include <QDBusPendingCall>

namespace vorrano::linux_platform {

platform::Subscription LogindStayAwake::stayAwake(std::string_view why)
{
    const auto bus = QDBusConnection::systemBus();
    if (!bus.isConnected()) {
        return {};
    }
    const auto request =
        methodCall(QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
                   QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"),
                   {QStringLiteral("sleep:idle:handle-lid-switch:shutdown"), QStringLiteral("Vorrano Setup"),
                    QString::fromUtf8(why.data(), static_cast<qsizetype>(why.size())), QStringLiteral("block")});
    // The answer brings a file that is the inhibitor for as long as it is open. It is open for as long as the call
    // lives.
    return platform::Subscription([call = bus.asyncCall(request)] {});
}

} // namespace vorrano::linux_platform
