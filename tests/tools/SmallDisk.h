// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tarnwell::test
{

/// A file system in memory with little room, at a folder of the test's, that only this process and its
/// children see.
class SmallDisk
{
public:
    SmallDisk(const std::string& folder, int kibibytes);
    /// Unmounts the disk, which deletes its files.
    ~SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    /// False where this user may not mount anything, not even for himself.
    bool isThere() const { return m_isThere; }

    /// Waits until all its room is free: the kernel keeps what a confined program has written for a moment
    /// longer than the program lives. False where it stays taken.
    bool becomesFree() const;

    /// From now on nothing on it can be changed.
    bool makeReadOnly() const;

private:
    std::string m_folder;
    bool m_isThere = false;
};

} // namespace tarnwell::test
