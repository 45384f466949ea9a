// SPDX-License-Identifier: MIT
#include "tools/TemporaryFile.h"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/statvfs.h>
#include <unistd.h>
#include <vector>

namespace
{

/// In bytes; 0 for a folder that does not exist.
unsigned long long freeSpaceIn(const std::string& folder)
{
    struct statvfs status = {};
    if (::statvfs(folder.c_str(), &status) != 0)
        return 0;
    return static_cast<unsigned long long>(status.f_bavail) * status.f_frsize;
}

/// The folder of TMPDIR if it has room, then the others in the order of their room.
std::vector<std::string> candidateFolders()
{
    constexpr unsigned long long enoughRoom = 16 << 20; // bytes
    std::vector<std::string> folders = {"/var/tmp", "/tmp"};
    const char* chosen = std::getenv("TMPDIR");
    const bool isChosen = chosen != nullptr && *chosen != '\0';
    if (isChosen)
        folders.insert(folders.begin(), chosen);
    const bool isFirst = isChosen && freeSpaceIn(chosen) >= enoughRoom;
    std::stable_sort(folders.begin() + (isFirst ? 1 : 0), folders.end(),
        [](const std::string& left, const std::string& right) {
            return freeSpaceIn(left) > freeSpaceIn(right);
        });
    return folders;
}

int createIn(const std::string& folder)
{
    const int unnamed = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (unnamed >= 0)
        return unnamed;
    std::string path = folder + "/tarnwell-XXXXXX";
    const int file = ::mkostemp(path.data(), O_CLOEXEC);
    if (file >= 0)
        ::unlink(path.c_str());
    return file;
}

} // namespace

int createTemporaryFile()
{
    int file = -1;
    for (const std::string& folder : candidateFolders()) {
        if (file < 0)
            file = createIn(folder);
    }
    return file;
}
