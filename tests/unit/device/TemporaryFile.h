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

// Nobody may read that file while the object lives, not even root: file accesses of this thread are then those of an
// ordinary user.
class AccessDenied {
public:
    explicit AccessDenied(const std::filesystem::path& file);
    AccessDenied(const AccessDenied&) = delete;
    AccessDenied& operator=(const AccessDenied&) = delete;
    ~AccessDenied();
};

} // namespace vorrano::device
