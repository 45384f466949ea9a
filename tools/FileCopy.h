// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string_view>
#include <sys/types.h>

enum class CopyEnd { Copied, Failed, Cancelled };

/// Called with the number of bytes copied so far, after at most 1 MiB of data, or once after blocks are
/// shared; false cancels. Called with the last number again while the data is written to the disk.
using CopyProgress = std::function<bool(off_t)>;

/// Copies the first `size` bytes of a file into an empty one. The file system shares the blocks if it can
/// (Btrfs, XFS); otherwise the kernel copies them, otherwise this process. Holes remain holes. Copied data is
/// written back to the disk before the function returns. After a failure, with the reason in errno, or a
/// cancel the target is incomplete. A source that is shorter than `size` at the end is a failure (EIO).
CopyEnd copyFile(int source, int target, off_t size, const CopyProgress& progress);

/// Writes all bytes at the offset. False on an error, with the reason in errno.
bool writeBytes(int file, std::string_view bytes, off_t offset);

/// Copies a whole file to an empty one with calls of write only, for file systems that accept nothing else.
CopyEnd copyFileInOrder(int source, int target, const CopyProgress& progress);
