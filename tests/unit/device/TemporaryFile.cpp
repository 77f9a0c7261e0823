#include "unit/device/TemporaryFile.h"

#include <fstream>
#include <stdexcept>

#include <stdlib.h>
#include <sys/fsuid.h>
#include <unistd.h>

namespace vorrano::device {

TemporaryFile::TemporaryFile(const std::string& content)
{
    std::string name = std::filesystem::temp_directory_path() / "vorrano-image-XXXXXX";
    const int descriptor = mkstemp(name.data());
    if (descriptor < 0) {
        throw std::runtime_error("no temporary file");
    }
    close(descriptor);
    m_path = name;
    std::ofstream(m_path, std::ios::binary) << content;
}

TemporaryFile::~TemporaryFile()
{
    std::error_code ignored;
    std::filesystem::remove(m_path, ignored);
}

AccessDenied::AccessDenied(const std::filesystem::path& file)
{
    std::filesystem::permissions(file, std::filesystem::perms::none);
    constexpr uid_t kNobody = 65534;
    if (::geteuid() == 0) {
        ::setfsuid(kNobody);
        // It reports no failure; asked for what is no user it only answers.
        if (static_cast<uid_t>(::setfsuid(static_cast<uid_t>(-1))) != kNobody) {
            throw std::runtime_error("root may not access files as another user");
        }
    }
}

AccessDenied::~AccessDenied() { ::setfsuid(::geteuid()); }

} // namespace vorrano::device
