// SPDX-License-Identifier: MIT
#include "tools/DocumentPortal.h"

#include <array>
#include <fcntl.h>
#include <sstream>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace
{

constexpr std::size_t bufferSize = 4096;

std::string contentOf(const char* path)
{
    std::string text;
    const int file = ::open(path, O_RDONLY | O_CLOEXEC);
    std::array<char, bufferSize> piece = {};
    for (ssize_t count = 1; file >= 0 && count > 0;) {
        count = ::read(file, piece.data(), piece.size());
        text.append(piece.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    if (file >= 0)
        ::close(file);
    return text;
}

} // namespace

bool isDocumentPortal(int folder)
{
    struct stat status = {};
    return ::fstat(folder, &status) == 0
        && isDocumentPortal(contentOf("/proc/self/mountinfo"), status.st_dev);
}

bool isDocumentPortal(const std::string& mounts, dev_t device)
{
    // Numbers of the mount and its parent, device, root, path, options, optional fields, "-", type.
    const std::string number = std::to_string(major(device)) + ":" + std::to_string(minor(device));
    std::istringstream lines(mounts);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string id;
        std::string parent;
        std::string mountDevice;
        words >> id >> parent >> mountDevice;
        if (mountDevice == number && line.find(" - fuse.portal ") != std::string::npos)
            return true;
    }
    return false;
}
