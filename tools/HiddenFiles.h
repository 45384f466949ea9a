// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <sys/types.h>

// Hidden names of unfinished outputs, for file systems without unnamed files:
// ".tarnwell-unfinished-RANDOM-CHECK", both in 16 hexadecimal digits. CHECK is a hash of RANDOM, so that no
// file of another origin has such a name. Only files that this program has created bear one, and only until
// they are finished: the name marks what may be deleted.

/// Creates an empty file with a hidden name in the folder, readable and writable for its owner only, and
/// locks it (flock). Returns its descriptor, -1 on an error, and sets `name`.
int createHiddenFile(int folder, std::string& name);

/// Deletes the hidden files that killed processes have left in the folder: regular files of this user with
/// one link that no process has locked and that have not been modified for a day. The day is for clocks of
/// file servers, for FAT, which stores local time, and for locks that a second mount does not show.
void removeStaleHiddenFiles(int folder);

/// Whether the name has the form above.
bool isHiddenName(const std::string& name);
