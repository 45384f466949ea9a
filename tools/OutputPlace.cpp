// SPDX-License-Identifier: MIT
#include "tools/OutputPlace.h"

#include "tools/DocumentPortal.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <iterator>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace
{

constexpr int mostNames = 1000;
constexpr std::size_t endSize = std::size_t(64) << 10; // bytes at each end that are compared

std::string folderOf(const std::string& path)
{
    const auto slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

/// The first `size` bytes of the text, without an incomplete UTF-8 character at the end.
std::string shortened(const std::string& text, std::size_t size)
{
    const auto isInsideCharacter
        = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
    while (size > 0 && size < text.size() && isInsideCharacter(text[size]))
        --size;
    return text.substr(0, size);
}

/// The longest beginning of the stem with which the path, including `end`, can be opened by other programs.
std::string stemBefore(const std::string& end, const std::string& stem, const std::string& folderPath)
{
    const std::size_t others = folderPath.size() + 1 + end.size();
    const std::size_t room = others < PATH_MAX - 1 ? PATH_MAX - 1 - others : 0;
    return shortened(stem, std::min(stem.size(), room));
}

bool isSameTime(const timespec& left, const timespec& right)
{
    return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

/// Compares `endSize` bytes. Files that cannot be read count as equal.
bool areSameBytesAt(int left, int right, off_t offset)
{
    std::array<char, endSize> leftBytes = {};
    std::array<char, endSize> rightBytes = {};
    const ssize_t leftSize = ::pread(left, leftBytes.data(), leftBytes.size(), offset);
    const ssize_t rightSize = ::pread(right, rightBytes.data(), rightBytes.size(), offset);
    return leftSize < 0 || rightSize < 0 || leftBytes == rightBytes;
}

bool hasFixedNumbers(int folder)
{
    struct statfs status = {};
    return ::fstatfs(folder, &status) == 0 && givesFixedNumbers(static_cast<std::uint32_t>(status.f_type));
}

bool hasName(int folder, const std::string& name)
{
    struct stat status = {};
    return ::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

/// Removes the first of two names of a file; on an error, with the reason in errno, the second one.
bool removeFirstName(int folder, const std::string& from, const std::string& to)
{
    if (::unlinkat(folder, from.c_str(), 0) == 0)
        return true;
    const int error = errno;
    ::unlinkat(folder, to.c_str(), 0);
    errno = error;
    return false;
}

bool failWith(int error)
{
    errno = error;
    return false;
}

bool areSameEnds(int left, int right, off_t size)
{
    const off_t lastBytes = std::max<off_t>(size - static_cast<off_t>(endSize), 0);
    return areSameBytesAt(left, right, 0) && areSameBytesAt(left, right, lastBytes);
}

} // namespace

OutputPlace::OutputPlace(const std::string& path)
    : m_folderPath(folderOf(path))
    , m_name(path.substr(path.rfind('/') + 1))
    , m_folder(::open(m_folderPath.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC))
    , m_atStart(fingerprint())
{
}

OutputPlace::~OutputPlace()
{
    if (isOpen())
        ::close(m_folder);
}

std::string OutputPlace::pathOf(const std::string& name) const
{
    return m_folderPath + "/" + name;
}

bool OutputPlace::hasFile() const
{
    struct stat status = {};
    return ::fstatat(m_folder, m_name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && !S_ISDIR(status.st_mode);
}

bool OutputPlace::isUnchanged() const
{
    return fingerprint() == m_atStart;
}

OutputPlace::Fingerprint OutputPlace::fingerprint() const
{
    Fingerprint values = {};
    if (!isOpen())
        return values; // with the reason in errno
    auto value = values.begin();
    for (const int flags : {AT_SYMLINK_NOFOLLOW, 0}) {
        // FUSE can return attributes from before a rename unless they are requested from the file system.
        struct statx status = {};
        ::statx(m_folder, m_name.c_str(), flags | AT_STATX_FORCE_SYNC, STATX_BASIC_STATS, &status);
        *value++ = static_cast<std::int64_t>(status.stx_size);
        *value++ = status.stx_mtime.tv_sec;
        *value++ = status.stx_mtime.tv_nsec;
    }
    return values;
}

bool OutputPlace::holds(int file) const
{
    struct stat here = {};
    struct stat meant = {};
    if (::fstatat(m_folder, m_name.c_str(), &here, AT_SYMLINK_NOFOLLOW) != 0 || ::fstat(file, &meant) != 0)
        return false;
    if (here.st_dev == meant.st_dev && (here.st_ino == meant.st_ino || hasFixedNumbers(m_folder)))
        return here.st_ino == meant.st_ino;
    if (!S_ISREG(here.st_mode) || here.st_size != meant.st_size || !isSameTime(here.st_mtim, meant.st_mtim))
        return false;
    const int other = ::openat(m_folder, m_name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    const bool isSame = areSameEnds(other, file, meant.st_size);
    if (other >= 0)
        ::close(other);
    return isSame;
}

std::string OutputPlace::putAside(const std::string& word) const
{
    if (!hasFile()) {
        errno = ENOENT;
        return {};
    }
    const auto dot = m_name.rfind('.');
    std::string stem = m_name.substr(0, dot == 0 ? std::string::npos : dot);
    const std::string extension = m_name.substr(stem.size());
    for (int number = 1; number < mostNames;) {
        std::string end = " (" + word;
        if (number > 1)
            end += ' ' + std::to_string(number);
        end += ')' + extension;
        stem = stemBefore(end, stem, m_folderPath);
        if (renameToFreeName(m_folder, m_name, stem + end))
            return stem + end;
        if (errno == ENAMETOOLONG && !stem.empty())
            stem = shortened(stem, stem.size() - 1);
        else if (errno == EEXIST)
            ++number;
        else
            return {};
    }
    return {};
}

void OutputPlace::sync() const
{
    const int readable = ::openat(m_folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (readable < 0)
        return;
    ::fsync(readable);
    ::close(readable);
}

bool givesFixedNumbers(std::uint32_t fileSystem)
{
    // Magic numbers of statfs(2). The kernel headers of older systems lack some of them.
    constexpr std::uint32_t fuse = 0x65735546;
    constexpr std::uint32_t v9fs = 0x01021997;
    constexpr std::uint32_t cifs = 0xFF534D42;
    constexpr std::uint32_t smb2 = 0xFE534D42;
    constexpr std::uint32_t virtualBox = 0x786F4256;
    constexpr std::uint32_t others[] = {fuse, v9fs, cifs, smb2, virtualBox};
    return std::find(std::begin(others), std::end(others), fileSystem) == std::end(others);
}

bool renameToFreeName(int folder, const std::string& from, const std::string& to)
{
    constexpr int attempts = 2; // another process can delete the name between two calls
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (::renameat2(folder, from.c_str(), folder, to.c_str(), RENAME_NOREPLACE) == 0)
            return true;
        if (errno != EEXIST)
            break;
        if (hasName(folder, to))
            return failWith(EEXIST);
        errno = EEXIST;
    }
    if (errno == EEXIST) // for a name that does not exist: the behaviour of the document portal
        return failWith(ENOTSUP);
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    // The file system does not support such a rename. link fails if the name exists; some file systems do not
    // support links.
    if (::linkat(folder, from.c_str(), folder, to.c_str(), 0) == 0)
        return removeFirstName(folder, from, to);
    if (errno == EEXIST || errno == ENAMETOOLONG)
        return false;
    if (hasName(folder, to))
        return failWith(EEXIST);
    if (isDocumentPortal(folder))
        return failWith(ENOTSUP);
    return ::renameat(folder, from.c_str(), folder, to.c_str()) == 0;
}
