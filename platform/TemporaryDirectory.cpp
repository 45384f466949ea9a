// SPDX-License-Identifier: MIT
#include "platform/TemporaryDirectory.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace tarnwell
{

namespace
{

constexpr unsigned long long enoughRoom = 16 << 20; // bytes, which the stills of most videos fit into
constexpr std::size_t smallFile = 64 << 10; // bytes

constexpr const char* folderTemplate = "/tarnwell-XXXXXX";

// Nothing can ever be created below a device.
constexpr const char* impossibleFolder = "/dev/null/";

void addFromEnvironment(std::vector<std::string>& folders, const char* variable)
{
    const char* value = std::getenv(variable);
    if (value != nullptr && value[0] == '/')
        folders.emplace_back(value);
}

std::vector<std::string> candidateFolders()
{
    std::vector<std::string> folders;
    addFromEnvironment(folders, "TMPDIR");
    folders.insert(folders.end(), {"/tmp", "/var/tmp"});
    addFromEnvironment(folders, "XDG_RUNTIME_DIR");
    folders.emplace_back("/dev/shm");
    return folders;
}

/// The amount of data that fits into a folder, in ascending order.
enum class Room { None, SmallFile, Enough };

/// Closes the file.
bool canWrite(int file)
{
    const std::string bytes(smallFile, '\0');
    const bool isWritten = ::write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    return ::close(file) == 0 && isWritten; // network file systems report a full disk at the end
}

/// A new file without a name. `folder` ends in "/".
int openUnnamed(const std::string& folder)
{
    if (const int file = ::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, S_IRUSR | S_IWUSR);
        file >= 0)
        return file;
    std::string path = folder + "XXXXXX"; // the file system has no unnamed files
    const int file = ::mkostemp(path.data(), O_CLOEXEC);
    if (file >= 0)
        ::unlink(path.c_str());
    return file;
}

Room roomIn(const std::string& folder)
{
    const int file = openUnnamed(folder);
    if (file < 0)
        return Room::None;
    struct statvfs status = {};
    const bool isKnown = ::fstatvfs(file, &status) == 0 && status.f_blocks > 0;
    if (!canWrite(file))
        return Room::None;
    return !isKnown || static_cast<unsigned long long>(status.f_bavail) * status.f_frsize >= enoughRoom
        ? Room::Enough
        : Room::SmallFile;
}

/// The path of a new folder, ending in "/", with more room than `least` if there is one; empty otherwise.
std::string newFolder(std::optional<Room> least)
{
    std::string best;
    for (const auto& parent : candidateFolders()) {
        std::string candidate = parent + folderTemplate;
        if (::mkdtemp(candidate.data()) == nullptr)
            continue;
        const Room room = roomIn(candidate + '/');
        if (least && room <= *least) {
            ::rmdir(candidate.c_str());
            continue;
        }
        if (!best.empty())
            ::rmdir(best.c_str());
        best = candidate + '/';
        least = room;
        if (room == Room::Enough)
            break;
    }
    return best;
}

std::string newFolder()
{
    const std::string folder = newFolder(std::nullopt);
    return folder.empty() ? impossibleFolder : folder;
}

/// The path without its closing slash, behind which system calls follow a symbolic link.
std::string folderName(const std::string& path)
{
    return path.substr(0, path.size() - 1);
}

/// Another user may have created a folder or a link at this path.
bool isOwnFolder(const std::string& folder)
{
    struct stat status = {};
    return ::lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid();
}

void removeOwnFolder(const std::string& path)
{
    std::error_code ignored;
    if (const std::string folder = folderName(path); isOwnFolder(folder))
        std::filesystem::remove_all(folder, ignored);
}

} // namespace

TemporaryDirectory::TemporaryDirectory()
    : m_path(newFolder())
{
}

TemporaryDirectory::~TemporaryDirectory()
{
    removeOwnFolder(m_path);
}

void TemporaryDirectory::restore()
{
    const std::string folder = folderName(m_path);
    if (!isOwnFolder(folder) && ::mkdir(folder.c_str(), S_IRWXU) != 0) {
        m_path = newFolder();
        return;
    }
    const Room room = roomIn(m_path);
    if (room == Room::Enough)
        return;
    if (const std::string better = newFolder(room); !better.empty()) {
        removeOwnFolder(m_path);
        m_path = better;
    }
}

} // namespace tarnwell
