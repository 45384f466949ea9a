// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tarnwell::test
{

/// A small file system in memory, mounted at a folder of the test. Only this process and its children see it.
class SmallDisk
{
public:
    SmallDisk(const std::string& folder, int kibibytes);
    /// Unmounts the disk, which deletes its files.
    ~SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    /// False if this user cannot mount it, even in a user namespace.
    bool isThere() const { return m_isThere; }

    /// Waits until the disk is empty: the kernel keeps a file of a killed program for a moment after its
    /// exit. False if it does not become empty.
    bool becomesFree() const;

    /// Remounts it read-only.
    bool makeReadOnly() const;

private:
    std::string m_folder;
    bool m_isThere = false;
};

} // namespace tarnwell::test
