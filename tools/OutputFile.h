// SPDX-License-Identifier: MIT
#pragma once

#include "tools/OutputPlace.h"

#include <optional>
#include <string>
#include <sys/types.h>

/// A file that appears at its path whole or not at all. Until it is moved there it has no name or, on file
/// systems without unnamed files, a hidden name in the same folder (HiddenFiles.h). A file that exists at the
/// path stays untouched until then.
///
/// A file is replaced in the same steps on every file system, and nothing is deleted before the last one:
/// the older file is put aside as "NAME (previous).EXTENSION" (moveToPath), the new file is moved to the
/// path (moveToPath), and the older file is deleted (deleteOlder). A process that is killed in between leaves
/// the older file under that name.
class OutputFile
{
public:
    /// A new file has at most the permissions `mode`, without those of the umask; its owner can always read
    /// and write it. Where it gets another group than `group`, that has no more permissions than everyone. A
    /// file that replaces another one has the permissions of that and, if possible, its group.
    explicit OutputFile(
        const std::string& path, mode_t mode = 0666, std::optional<gid_t> group = std::nullopt);
    /// Deletes a file that has not been moved to its path.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    const OutputPlace& place() const { return m_place; }

    bool isOpen() const { return m_descriptor >= 0; }
    int descriptor() const { return m_descriptor; }

    /// A path under which a child process that inherits the descriptor can write the file.
    std::string writablePath() const;

    /// Deletes the content.
    void empty() const;
    bool isEmpty() const;

    /// Sets the permissions and waits until the data is on the disk. False on an error.
    bool sync() const;

    /// Puts aside a file at the path and moves this one there. False on an error, for which errno gives the
    /// reason; an older file then is at the path or put aside.
    bool moveToPath();

    /// Deletes the file after moveToPath. An older file stays put aside.
    void undoMove();

    /// Whether moveToPath has put aside an older file.
    bool hasOlder() const { return !m_older.empty(); }

    /// Deletes the older file. False on an error; it then stays put aside.
    bool deleteOlder();

private:
    bool hasGroup(gid_t group) const;
    void setPermissions() const;
    bool setName();

    OutputPlace m_place;
    mode_t m_mode;
    std::optional<gid_t> m_group; // absent where m_mode is for any group
    std::string m_hidden; // the hidden name; empty where the file has none
    std::string
        m_older; // the name of the older file that moveToPath has put aside; empty where there is none
    int m_descriptor = -1;
};
