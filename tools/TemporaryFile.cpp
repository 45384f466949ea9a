// SPDX-License-Identifier: MIT
#include "tools/TemporaryFile.h"

#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/statvfs.h>
#include <unistd.h>

namespace
{

/// In bytes; 0 for a folder that does not exist.
unsigned long long freeSpaceIn(const char* folder)
{
    struct statvfs status = {};
    if (::statvfs(folder, &status) != 0)
        return 0;
    return static_cast<unsigned long long>(status.f_bavail) * status.f_frsize;
}

std::string temporaryFolder()
{
    const char* chosen = std::getenv("TMPDIR");
    if (chosen != nullptr && *chosen != '\0')
        return chosen;
    return freeSpaceIn("/var/tmp") >= freeSpaceIn("/tmp") ? "/var/tmp" : "/tmp";
}

} // namespace

int createTemporaryFile()
{
    const std::string folder = temporaryFolder();
    const int unnamed = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (unnamed >= 0)
        return unnamed;
    std::string path = folder + "/tarnwell-XXXXXX";
    const int file = ::mkostemp(path.data(), O_CLOEXEC);
    if (file >= 0)
        ::unlink(path.c_str());
    return file;
}
