// SPDX-License-Identifier: MIT
#include "tools/InputFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

InputFile::InputFile(const std::string& path)
    : m_descriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC))
{
    struct stat status = {};
    if (m_descriptor < 0 || ::fstat(m_descriptor, &status) != 0) {
        m_error = std::strerror(errno);
    } else if (!S_ISREG(status.st_mode)) {
        m_error = "not a file";
    } else {
        return;
    }
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
}

InputFile::~InputFile()
{
    if (isOpen())
        ::close(m_descriptor);
}
