#pragma once

#include <filesystem>
#include <vector>

namespace vorrano::platform {

// The person's choice of one file (no folder, any type), modal like an alert.
//
// Threads: the main thread.
class OpenPanel {
public:
    OpenPanel() = default;
    OpenPanel(const OpenPanel&) = delete;
    OpenPanel& operator=(const OpenPanel&) = delete;
    virtual ~OpenPanel() = default;

    // The chosen file; empty when the person cancelled, or when the program is ending.
    [[nodiscard]] virtual std::vector<std::filesystem::path> runModal() = 0;
};

} // namespace vorrano::platform
