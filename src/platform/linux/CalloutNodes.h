#pragma once

#include "platform/Mutex.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vorrano::linux_platform {

// The device nodes of the adapters that are present, by callout path.
//
// Threads: every method on any.
class CalloutNodes {
public:
    // Stores the node under the first of these paths that is free, or under the last when none is; which one it was.
    // There is one path at least.
    std::string add(const std::vector<std::string>& paths, const std::string& node);
    void remove(const std::string& path);
    [[nodiscard]] std::optional<std::string> nodeOf(const std::string& path) const;

private:
    mutable platform::Mutex m_mutex;
    std::map<std::string, std::string> m_nodes VORRANO_GUARDED_BY(m_mutex);
};

} // namespace vorrano::linux_platform
