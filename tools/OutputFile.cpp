// SPDX-License-Identifier: MIT
#include "tools/OutputFile.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr mode_t usualMode = 0666; // the user's mask takes its part
constexpr int mostNames = 1000;

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

bool isSameFile(const std::string& left, const std::string& right)
{
    struct stat a = {};
    struct stat b = {};
    return ::stat(left.c_str(), &a) == 0 && ::stat(right.c_str(), &b) == 0 && a.st_dev == b.st_dev
        && a.st_ino == b.st_ino;
}

/// Whether the folder lists an entry of exactly that name.
bool isListed(const std::string& folder, const std::string& name)
{
    DIR* listing = ::opendir(folder.c_str());
    if (listing == nullptr)
        return false;
    bool found = false;
    while (const dirent* entry = ::readdir(listing))
        found = found || name == entry->d_name;
    ::closedir(listing);
    return found;
}

bool renameToFreeName(const std::string& from, const std::string& to)
{
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    // File systems that cannot rename so: a link is refused where the name is taken.
    if (::link(from.c_str(), to.c_str()) == 0)
        return ::unlink(from.c_str()) == 0;
    return errno == EPERM && ::access(to.c_str(), F_OK) != 0 && ::rename(from.c_str(), to.c_str()) == 0;
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
    openNameless();
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

void OutputFile::openNameless()
{
    m_descriptor = ::open(folderOf(m_path).c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, usualMode);
}

void OutputFile::openHidden()
{
    std::string candidate = folderOf(m_path) + "/.tarnwell-XXXXXX";
    m_descriptor = ::mkostemp(candidate.data(), O_CLOEXEC);
    if (!isOpen())
        return;
    m_hiddenPath = candidate;
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(m_descriptor, usualMode & ~mask);
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
        const std::string candidate
            = folderOf(m_path) + "/.tarnwell-" + std::to_string(::getpid()) + "-" + std::to_string(number);
        if (::linkat(AT_FDCWD, writablePath().c_str(), AT_FDCWD, candidate.c_str(), AT_SYMLINK_FOLLOW) == 0) {
            m_hiddenPath = candidate;
            return true;
        }
        if (errno != EEXIST)
            return false;
    }
    return false;
}

bool OutputFile::finish()
{
    if (::fsync(m_descriptor) != 0)
        return false;
    if (m_hiddenPath.empty() && !linkHidden())
        return false;
    if (::rename(m_hiddenPath.c_str(), m_path.c_str()) != 0)
        return false;
    m_hiddenPath.clear();
    syncFolder(m_path);
    return true;
}

std::string putAside(const std::string& path, const std::string& word)
{
    struct stat status = {};
    if (::lstat(path.c_str(), &status) != 0 || S_ISDIR(status.st_mode))
        return {};
    const std::string name = nameOf(path);
    const auto dot = name.rfind('.');
    const std::string stem = name.substr(0, dot == 0 ? std::string::npos : dot);
    const std::string extension = name.substr(stem.size());
    for (int number = 1; number < mostNames; ++number) {
        const std::string count = number == 1 ? "" : " " + std::to_string(number);
        const std::string aside = folderOf(path) + "/" + stem + " (" + word + count + ")" + extension;
        if (renameToFreeName(path, aside))
            return aside;
        if (errno != EEXIST)
            return {};
    }
    return {};
}

bool isSameEntry(const std::string& left, const std::string& right)
{
    if (!isSameFile(folderOf(left), folderOf(right)) || !isSameFile(left, right))
        return false;
    // Two names of one file in a folder are two entries; a folder that folds case lists only one of them.
    return nameOf(left) == nameOf(right)
        || !(isListed(folderOf(left), nameOf(left)) && isListed(folderOf(right), nameOf(right)));
}
