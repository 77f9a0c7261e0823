#pragma once

#include <chrono>

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QString>
#include <QVariant>

namespace vorrano::linux_platform {

// A method call on the system bus that does not start the service it is for.
[[nodiscard]] QDBusMessage methodCall(const QString& service, const QString& path, const QString& interface,
                                      const QString& method, const QVariantList& arguments = {});

// Calls on the system bus that have to be answered before one deadline, all of them together. Waiting runs no event
// loop.
//
// Threads: one.
class TimedCalls {
public:
    explicit TimedCalls(std::chrono::milliseconds limit);

    // Sends the call off.
    [[nodiscard]] QDBusPendingCall send(const QDBusMessage& call) const;

    // Waits for the answer, which is an error when none came in time.
    [[nodiscard]] static QDBusMessage answerTo(QDBusPendingCall call);
    [[nodiscard]] QDBusMessage ask(const QDBusMessage& call) const { return answerTo(send(call)); }

    // No answer came, not even a refusal.
    [[nodiscard]] static bool isMissing(const QDBusMessage& answer);

private:
    const std::chrono::steady_clock::time_point m_deadline;
};

} // namespace vorrano::linux_platform
