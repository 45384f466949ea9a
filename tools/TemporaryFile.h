// SPDX-License-Identifier: MIT
#pragma once

/// Creates an empty file without a name for reading and writing, in the first of these folders in which it
/// can be created: the one in the environment variable TMPDIR if it has 16 MiB of free space; then this one,
/// /var/tmp and /tmp in the order of their free space. Returns its descriptor; -1 on an error, with the
/// reason in errno.
int createTemporaryFile();
