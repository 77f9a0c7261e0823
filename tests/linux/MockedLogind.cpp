#include "linux/MockedLogind.h"

#include <algorithm>
#include <iterator>

#include <QDBusArgument>

namespace vorrano::support {

namespace {

const QString kPath = QStringLiteral("/org/freedesktop/login1");
const QString kManager = QStringLiteral("org.freedesktop.login1.Manager");

const QString kGrant = QStringLiteral("from dbusmock.templates import logind\nret = logind.Inhibit(self, *args)");

} // namespace

// The mock counts the calls of those methods only that a test has added.
MockedLogind::MockedLogind() { replaceInhibit(kGrant); }

std::vector<std::string> MockedLogind::inhibitors() const
{
    const auto all = list();
    std::vector<std::string> texts;
    std::transform(all.begin(), all.end(), std::back_inserter(texts),
                   [](const Inhibitor& inhibitor) { return inhibitor.what + " " + inhibitor.mode; });
    return texts;
}

std::vector<std::string> MockedLogind::reasons() const
{
    const auto all = list();
    std::vector<std::string> texts;
    std::transform(all.begin(), all.end(), std::back_inserter(texts),
                   [](const Inhibitor& inhibitor) { return inhibitor.who + ": " + inhibitor.why; });
    return texts;
}

std::vector<MockedLogind::Inhibitor> MockedLogind::list() const
{
    std::vector<Inhibitor> all;
    const auto list = m_service.call(kPath, kManager, QStringLiteral("ListInhibitors")).value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        QString what;
        QString who;
        QString why;
        QString mode;
        quint32 user = 0;
        quint32 process = 0;
        list.beginStructure();
        list >> what >> who >> why >> mode >> user >> process;
        list.endStructure();
        all.push_back({what.toStdString(), who.toStdString(), why.toStdString(), mode.toStdString()});
    }
    list.endArray();
    return all;
}

int MockedLogind::requests() const { return m_service.callsOf(kPath, QStringLiteral("Inhibit")); }

void MockedLogind::sendPrepareForSleep(bool begins) const
{
    m_service.mock(
        kPath, QStringLiteral("EmitSignal"),
        {kManager, QStringLiteral("PrepareForSleep"), QStringLiteral("b"), QVariantList{QVariant::fromValue(begins)}});
}

void MockedLogind::refuseInhibitors() const
{
    replaceInhibit(
        QStringLiteral("raise dbus.exceptions.DBusException('no', name='org.freedesktop.DBus.Error.AccessDenied')"));
}

void MockedLogind::beginSleepBeforeGranting() const
{
    replaceInhibit(QStringLiteral("self.EmitSignal('%1', 'PrepareForSleep', 'b', [True])\n").arg(kManager) + kGrant);
}

void MockedLogind::replaceInhibit(const QString& code) const
{
    m_service.mock(kPath, QStringLiteral("AddMethod"),
                   {kManager, QStringLiteral("Inhibit"), QStringLiteral("ssss"), QStringLiteral("h"), QVariant(code)});
}

} // namespace vorrano::support
