#pragma once

#include <filesystem>
#include <string>

namespace vorrano::device {

// A file with that content, for as long as the object lives.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& content);
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace vorrano::device
