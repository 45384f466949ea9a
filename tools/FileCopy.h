// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <sys/types.h>

enum class CopyEnd { Copied, Failed, Cancelled };

/// Called with the number of bytes copied so far, at most 1 MiB of data after the last call; false cancels.
using CopyProgress = std::function<bool(off_t)>;

/// Copies the first `size` bytes of a file into an empty one. The file system shares the blocks of both where
/// it can (Btrfs, XFS); else the kernel copies them; else this process. Holes stay holes. What has been
/// copied is written back to the disk meanwhile. After a failure, for which errno gives the reason, or a
/// cancel the target holds a part. A source that ends earlier is a failure (EIO).
CopyEnd copyFile(int source, int target, off_t size, const CopyProgress& progress);
