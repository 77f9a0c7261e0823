#pragma once

#include <memory>

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

namespace vorrano::support {

// A message bus of the test program's own, in place of the system's. It lasts as long as the program, as the program
// has one connection to the system bus.
//
// Services that it could start on demand: org.freedesktop.NetworkManager and org.freedesktop.login1, each by a
// program that makes a file, which shows that somebody asked for it, and fails.
class PrivateBus {
public:
    static PrivateBus& instance();

    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;
    ~PrivateBus();

    [[nodiscard]] bool wasAskedToStart(const QString& service) const;
    void forgetThatItWasAskedToStart(const QString& service) const;

private:
    PrivateBus();
    [[nodiscard]] QString markerOf(const QString& service) const;
    void writeConfiguration() const;
    void writeService(const QString& service) const;

    QTemporaryDir m_folder;
    QProcess m_daemon;
};

} // namespace vorrano::support
