// SPDX-License-Identifier: MIT
#pragma once

#include "tools/OutputPlace.h"
#include "tools/Permissions.h"

#include <functional>
#include <string>

/// An output file that appears at its path complete or not at all. Until it is moved there it has no name or,
/// on file systems without unnamed files, a hidden name in the same folder (HiddenFiles.h). Until then an
/// older file at the path does not change. If the file system does not support that written bytes are read
/// or changed, as GVfs mounts of file servers, the file is temporary (TemporaryFile.h) until sync copies it.
///
/// A file is replaced in the same steps on every file system, and nothing is deleted before the last one: the
/// older file is renamed to "NAME (previous).EXTENSION" (putOlderAside), the new file is moved to the path
/// (moveToPath), and the older file is deleted (deleteOlder). If the process is killed between these steps,
/// the older file has that name. The exception is a folder of the document portal (see DocumentPortal.h):
/// there the older file keeps its name until moveToPath replaces it.
class OutputFile
{
public:
    /// A new file has at most these permissions, minus the umask; its owner can always read and write it. A
    /// file that replaces another one gets its permissions and, if possible, its group.
    explicit OutputFile(const std::string& path, Permissions permissions = {});
    /// Deletes the file if it has not been moved to its path.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    const OutputPlace& place() const { return m_place; }

    bool isOpen() const { return m_descriptor >= 0; }
    int descriptor() const { return m_descriptor; }

    /// A path under which a child process that inherits the descriptor can write the file.
    std::string writablePath() const;

    /// Truncates the file.
    void empty() const;

    /// Copies a temporary file to the folder, sets the permissions and waits until the data is on the disk.
    /// False on an error, with the reason in errno. `mayContinue` is called after at most 1 MiB of a copy;
    /// false stops it (ECANCELED).
    bool sync(const std::function<bool()>& mayContinue = [] { return true; }) const;

    /// Renames an older file at the path, unless its folder accepts no other name. False on an error, with
    /// the reason in errno; the older file is then at the path.
    bool putOlderAside();

    /// Moves the file to the path. False on an error, with the reason in errno. An older file that was not
    /// put aside is replaced in one step and cannot be restored.
    bool moveToPath();

    /// Deletes the file after moveToPath, unless another file has replaced it, and gives an older file that
    /// putOlderAside has renamed its name back. False, with the reason in errno, if it keeps the new name.
    bool undoMove();

    /// Whether putOlderAside has renamed an older file.
    bool hasOlder() const { return !m_older.empty(); }

    /// Whether moveToPath replaces an older file that could not be put aside.
    bool replacesOlder() const { return m_replacesOlder; }

    /// Deletes the older file. False on an error; it then keeps its new name.
    bool deleteOlder();

private:
    bool copyToHiddenFile(const std::function<bool()>& mayContinue) const;
    void setPermissions(int file) const;
    bool setName();
    bool isAtPath() const;

    OutputPlace m_place;
    Permissions m_permissions; // of a new file
    std::string m_hidden; // the hidden name; empty if the file has none
    std::string m_older; // the new name of the older file; empty if there is none
    bool m_replacesOlder = false;
    bool m_isMoved = false;
    int m_descriptor = -1;
    bool m_isTemporary = false; // the hidden file is empty until sync
};
