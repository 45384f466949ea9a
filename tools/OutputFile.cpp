// SPDX-License-Identifier: MIT
#include "tools/OutputFile.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr mode_t usualMode = 0666; // before the umask
constexpr int mostNames = 1000;
constexpr std::size_t longestName = NAME_MAX;

std::string folderOf(const std::string& path)
{
    const auto slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string nameOf(const std::string& path)
{
    return path.substr(path.rfind('/') + 1);
}

const std::string hiddenPrefix = ".tarnwell-";

bool renameToFreeName(const std::string& from, const std::string& to)
{
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    // The file system has no such rename. A link fails where the name exists; some file systems have none.
    if (::link(from.c_str(), to.c_str()) == 0)
        return ::unlink(from.c_str()) == 0;
    if (errno == EEXIST)
        return false;
    struct stat taken = {};
    if (::lstat(to.c_str(), &taken) == 0) {
        errno = EEXIST;
        return false;
    }
    return ::rename(from.c_str(), to.c_str()) == 0;
}

/// At most `most` bytes of the text's beginning, without a part of a UTF-8 character.
std::string beginningOf(const std::string& text, std::size_t most)
{
    const auto isInsideCharacter
        = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
    std::size_t size = std::min(text.size(), most);
    while (size > 0 && size < text.size() && isInsideCharacter(text[size]))
        --size;
    return text.substr(0, size);
}

void syncFolder(const std::string& path)
{
    const int folder = ::open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return;
    ::fsync(folder);
    ::close(folder);
}

} // namespace

OutputFile::OutputFile(std::string path)
    : m_path(std::move(path))
{
    openUnnamed();
    if (!isOpen())
        openHidden();
}

OutputFile::~OutputFile()
{
    if (isOpen())
        ::close(m_descriptor);
    if (!m_hiddenPath.empty())
        ::unlink(m_hiddenPath.c_str());
}

void OutputFile::openUnnamed()
{
    m_descriptor = ::open(folderOf(m_path).c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, usualMode);
}

void OutputFile::openHidden()
{
    removeStale();
    std::string candidate = folderOf(m_path) + "/" + hiddenPrefix + "XXXXXX";
    m_descriptor = ::mkostemp(candidate.data(), O_CLOEXEC);
    if (!isOpen())
        return;
    ::flock(m_descriptor, LOCK_EX | LOCK_NB); // marks it as in use, see removeStale
    m_hiddenPath = candidate;
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(m_descriptor, usualMode & ~mask);
}

/// Deletes hidden files of processes that were killed: older than a minute and not locked.
void OutputFile::removeStale() const
{
    constexpr std::time_t minimumAge = 60; // seconds
    DIR* listing = ::opendir(folderOf(m_path).c_str());
    if (listing == nullptr)
        return;
    while (const dirent* entry = ::readdir(listing)) {
        if (hiddenPrefix.compare(0, std::string::npos, entry->d_name, hiddenPrefix.size()) != 0)
            continue;
        const int file
            = ::openat(::dirfd(listing), entry->d_name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        struct stat status = {};
        if (file >= 0 && ::fstat(file, &status) == 0 && S_ISREG(status.st_mode)
            && std::time(nullptr) - status.st_mtime > minimumAge && ::flock(file, LOCK_EX | LOCK_NB) == 0)
            ::unlinkat(::dirfd(listing), entry->d_name, 0);
        if (file >= 0)
            ::close(file);
    }
    ::closedir(listing);
}

std::string OutputFile::writablePath() const
{
    return "/proc/self/fd/" + std::to_string(m_descriptor);
}

void OutputFile::empty() const
{
    [[maybe_unused]] const int result = ::ftruncate(m_descriptor, 0);
    ::lseek(m_descriptor, 0, SEEK_SET);
}

bool OutputFile::isEmpty() const
{
    struct stat status = {};
    return ::fstat(m_descriptor, &status) != 0 || status.st_size == 0;
}

bool OutputFile::linkHidden()
{
    for (int number = 0; number < mostNames; ++number) {
        const std::string candidate = folderOf(m_path) + "/" + hiddenPrefix + std::to_string(::getpid()) + "-"
            + std::to_string(number);
        if (::linkat(AT_FDCWD, writablePath().c_str(), AT_FDCWD, candidate.c_str(), AT_SYMLINK_FOLLOW) == 0) {
            m_hiddenPath = candidate;
            return true;
        }
        if (errno != EEXIST)
            return false;
    }
    return false;
}

bool OutputFile::sync() const
{
    return ::fsync(m_descriptor) == 0;
}

bool OutputFile::moveToPath()
{
    if (m_hiddenPath.empty() && !linkHidden())
        return false;
    if (!exchange()) {
        if (::rename(m_hiddenPath.c_str(), m_path.c_str()) != 0)
            return false;
        m_hiddenPath.clear();
    }
    syncFolder(m_path);
    return true;
}

bool OutputFile::exchange() const
{
    return isFileAt(m_path)
        && ::renameat2(AT_FDCWD, m_hiddenPath.c_str(), AT_FDCWD, m_path.c_str(), RENAME_EXCHANGE) == 0;
}

void OutputFile::undoMove()
{
    if (m_hiddenPath.empty())
        ::unlink(m_path.c_str());
    else
        exchange();
}

bool isFileAt(const std::string& path)
{
    struct stat status = {};
    return ::lstat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

std::string putAside(const std::string& path, const std::string& word)
{
    if (!isFileAt(path))
        return {};
    const std::string name = nameOf(path);
    const auto dot = name.rfind('.');
    const std::string stem = name.substr(0, dot == 0 ? std::string::npos : dot);
    const std::string extension = name.substr(stem.size());
    for (int number = 1; number < mostNames; ++number) {
        const std::string end
            = " (" + word + (number == 1 ? "" : " " + std::to_string(number)) + ")" + extension;
        const std::size_t room = end.size() < longestName ? longestName - end.size() : 0;
        const std::string aside = folderOf(path) + "/" + beginningOf(stem, room) + end;
        if (renameToFreeName(path, aside))
            return aside;
        if (errno != EEXIST)
            return {};
    }
    return {};
}

bool isEntryOf(const std::string& path, const std::string& file)
{
    struct stat entry = {};
    struct stat meant = {};
    return ::lstat(path.c_str(), &entry) == 0 && ::stat(file.c_str(), &meant) == 0
        && entry.st_dev == meant.st_dev && entry.st_ino == meant.st_ino;
}
