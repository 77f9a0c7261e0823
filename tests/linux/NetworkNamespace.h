#pragma once

#include <string>

namespace vorrano::support {

// A network of the test's own for the calling thread, empty but for a loopback that is down; the thread returns to its
// former one when this goes.
class NetworkNamespace {
public:
    NetworkNamespace();
    NetworkNamespace(const NetworkNamespace&) = delete;
    NetworkNamespace& operator=(const NetworkNamespace&) = delete;
    ~NetworkNamespace();

    // Runs the ip command with these arguments, separated by blanks; fails the test when it fails.
    void ip(const std::string& arguments) const;

    // A link "net" with addresses in 192.0.2.0/24 and fd00::/64, and the other end of its cable.
    void addLink() const;
    void plugCable() const;
    void pullCable() const;

private:
    int m_former;
};

} // namespace vorrano::support
