// SPDX-License-Identifier: MIT
#include "tools/FileCopy.h"

#include "tools/EarlyWriteback.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace
{

constexpr off_t pieceSize = off_t(1) << 20;

class FileCopier
{
public:
    FileCopier(int source, int target, off_t size, const CopyProgress& progress)
        : m_source(source)
        , m_target(target)
        , m_size(size)
        , m_progress(progress)
        , m_writeback(target)
    {
    }

    CopyEnd run()
    {
        const CopyEnd end = copy();
        struct stat status = {};
        if (end == CopyEnd::Copied && ::fstat(m_source, &status) == 0 && status.st_size < m_size) {
            errno = EIO;
            return CopyEnd::Failed;
        }
        return end;
    }

private:
    CopyEnd copy()
    {
        if (::ioctl(m_target, FICLONE, m_source) == 0)
            return m_progress(m_size) ? CopyEnd::Copied : CopyEnd::Cancelled;
        ::posix_fadvise(m_source, 0, 0, POSIX_FADV_SEQUENTIAL);
        for (off_t begin = dataAfter(0); begin < m_size;) {
            const off_t end = holeAfter(begin);
            if (const CopyEnd copied = copyData(begin, end); copied != CopyEnd::Copied)
                return copied;
            begin = dataAfter(end);
        }
        // Sets the size of a file that ends with a hole.
        if (::ftruncate(m_target, m_size) != 0)
            return CopyEnd::Failed;
        const bool isFinished = m_writeback.finish([this] { return m_progress(m_size); });
        return isFinished ? CopyEnd::Copied : CopyEnd::Cancelled;
    }

    /// The offset of the next data at or after `offset`. On file systems without holes this is `offset`.
    off_t dataAfter(off_t offset) const
    {
        const off_t data = ::lseek(m_source, offset, SEEK_DATA);
        if (data < 0)
            return errno == ENXIO ? m_size : offset;
        return std::min(data, m_size);
    }

    /// The end of the data at the offset.
    off_t holeAfter(off_t offset) const
    {
        const off_t hole = ::lseek(m_source, offset, SEEK_HOLE);
        return hole > offset ? std::min(hole, m_size) : m_size;
    }

    CopyEnd copyData(off_t begin, off_t end)
    {
        while (begin < end) {
            const ssize_t count = copyPiece(begin, std::min(end - begin, pieceSize));
            if (count == 0)
                errno = EIO;
            if (count <= 0)
                return CopyEnd::Failed;
            begin += count;
            m_writeback.advanceTo(begin);
            m_writeback.waitForDisk();
            if (!m_progress(begin))
                return CopyEnd::Cancelled;
        }
        return CopyEnd::Copied;
    }

    /// The number of bytes copied; 0 at the end of the source, -1 on a failure.
    ssize_t copyPiece(off_t offset, off_t size)
    {
        if (m_isCopiedByKernel) {
            off_t from = offset;
            off_t to = offset;
            const ssize_t count
                = ::copy_file_range(m_source, &from, m_target, &to, static_cast<std::size_t>(size), 0);
            if (count > 0)
                return count;
            // Kernels and file systems refuse this call for many reasons, and some return 0 instead of an
            // error. If the disk fails, the calls below fail, too.
            m_isCopiedByKernel = false;
        }
        return copyThroughBuffer(offset, static_cast<std::size_t>(size));
    }

    ssize_t copyThroughBuffer(off_t offset, std::size_t size)
    {
        m_buffer.resize(static_cast<std::size_t>(pieceSize));
        const ssize_t count = ::pread(m_source, m_buffer.data(), size, offset);
        if (count <= 0)
            return count;
        return writeBytes(m_target, {m_buffer.data(), static_cast<std::size_t>(count)}, offset) ? count : -1;
    }

    int m_source;
    int m_target;
    off_t m_size;
    const CopyProgress& m_progress;
    EarlyWriteback m_writeback;
    bool m_isCopiedByKernel = true;
    std::vector<char> m_buffer;
};

/// Writes all bytes with `write`, which is called with the bytes that are left. False on an error, with the
/// reason in errno.
template <typename Write>
bool writeWhole(std::string_view bytes, Write write)
{
    while (!bytes.empty()) {
        const ssize_t written = write(bytes);
        if (written == 0)
            errno = EIO;
        if (written == 0 || (written < 0 && errno != EINTR))
            return false;
        bytes.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    return true;
}

bool appendBytes(int file, std::string_view bytes)
{
    return writeWhole(
        bytes, [file](std::string_view rest) { return ::write(file, rest.data(), rest.size()); });
}

} // namespace

bool writeBytes(int file, std::string_view bytes, off_t offset)
{
    const off_t end = offset + static_cast<off_t>(bytes.size());
    return writeWhole(bytes, [file, end](std::string_view rest) {
        return ::pwrite(file, rest.data(), rest.size(), end - static_cast<off_t>(rest.size()));
    });
}

CopyEnd copyFile(int source, int target, off_t size, const CopyProgress& progress)
{
    return FileCopier(source, target, size, progress).run();
}

CopyEnd copyFileInOrder(int source, int target, const CopyProgress& progress)
{
    std::vector<char> buffer(static_cast<std::size_t>(pieceSize));
    for (off_t offset = 0;;) {
        const ssize_t count = ::pread(source, buffer.data(), buffer.size(), offset);
        if (count == 0)
            return CopyEnd::Copied;
        if (count < 0 || !appendBytes(target, {buffer.data(), static_cast<std::size_t>(count)}))
            return CopyEnd::Failed;
        offset += count;
        if (!progress(offset))
            return CopyEnd::Cancelled;
    }
}
