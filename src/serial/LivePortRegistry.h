#pragma once

#include "platform/Mutex.h"

#include <memory>
#include <string_view>
#include <vector>

namespace vorrano::serial {

class SerialPort;

// The ports that live, held weakly, in the order in which they were made: the reason why there is never more than one
// object for a path.
//
// Threads: any.
class LivePortRegistry {
public:
    void add(const std::shared_ptr<SerialPort>& port);

    // Takes all entries of that object out; also of one that is being destroyed.
    void remove(const SerialPort& port);

    [[nodiscard]] std::shared_ptr<SerialPort> existingPortWithPath(std::string_view path) const;

private:
    struct Entry {
        const SerialPort* identity;
        std::weak_ptr<SerialPort> port;
    };

    mutable platform::Mutex m_mutex;
    std::vector<Entry> m_entries VORRANO_GUARDED_BY(m_mutex);
};

// The one of the process.
[[nodiscard]] LivePortRegistry& livePortRegistry();

} // namespace vorrano::serial
