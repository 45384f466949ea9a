// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <sys/types.h>

// Hidden names of unfinished outputs, for file systems without unnamed files:
// ".tarnwell-unfinished-RANDOM-CHECK", both in 16 hexadecimal digits. CHECK is a hash of RANDOM, so that
// files of other programs do not have such a name. Only unfinished files that this program has created have
// one; files with such a name can be deleted.

/// Creates an empty file with a hidden name in the folder, readable and writable for its owner only, and
/// locks it (flock). Returns its descriptor and sets `name`; returns -1 on an error.
int createHiddenFile(int folder, std::string& name);

/// Deletes the hidden files that killed processes have left in the folder: regular files of this user with
/// one link that no process has locked and that have not been modified for a day. The minimum age covers
/// clocks of file servers, FAT, which stores local time, and locks that a second mount does not show.
void removeStaleHiddenFiles(int folder);

/// Whether the name has the form above.
bool isHiddenName(const std::string& name);
