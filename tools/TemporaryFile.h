// SPDX-License-Identifier: MIT
#pragma once

/// Creates an empty file without a name for reading and writing, in the folder of the environment variable
/// TMPDIR, or without this variable in /var/tmp or /tmp, whichever has more free space. Returns its
/// descriptor; -1 on an error, with the reason in errno.
int createTemporaryFile();
