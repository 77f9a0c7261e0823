#pragma once

#include <QDBusMessage>
#include <QProcess>
#include <QString>
#include <QVariant>

namespace vorrano::support {

// A system service that python-dbusmock plays on the private bus, until this object goes.
class MockedService {
public:
    MockedService(const QString& busName, const QString& templateName);
    MockedService(const MockedService&) = delete;
    MockedService& operator=(const MockedService&) = delete;
    ~MockedService();

    // Calls a method of the service and waits for the answer; fails the test when that is an error.
    QVariant call(const QString& path, const QString& interface, const QString& method,
                  const QVariantList& arguments = {}) const;

    // A method of the mock itself.
    QVariant mock(const QString& path, const QString& method, const QVariantList& arguments = {}) const;

    // How often a method of the object was called.
    [[nodiscard]] int callsOf(const QString& path, const QString& method) const;

    // No call is answered from here on, until thaw(); that one on any thread.
    void freeze();
    void thaw();

private:
    [[nodiscard]] bool isOnTheBus() const;

    QString m_busName;
    QProcess m_process;
};

} // namespace vorrano::support
