#include "unit/device/TemporaryFile.h"

#include <fstream>
#include <stdexcept>

#include <stdlib.h>
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

} // namespace vorrano::device
