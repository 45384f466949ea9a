// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

/// The place of an output file: a folder and a name in it. The folder is opened once and every operation uses
/// its descriptor, so that they all reach the same folder even if it is renamed and another folder or a link
/// takes its path.
class OutputPlace
{
public:
    explicit OutputPlace(const std::string& path);
    ~OutputPlace();
    OutputPlace(const OutputPlace&) = delete;
    OutputPlace& operator=(const OutputPlace&) = delete;

    bool isOpen() const { return m_folder >= 0; }

    /// Opened with O_PATH: only for the calls whose names end in "at", and for fstat.
    int folder() const { return m_folder; }

    const std::string& name() const { return m_name; }

    /// The path of another name in the folder, as the folder was spelled.
    std::string pathOf(const std::string& name) const;

    /// Whether a file or a symbolic link, which is not followed, exists here. A folder does not count.
    bool hasFile() const;

    /// Whether the file here is the open regular file `file`. Their numbers can differ if the file is seen
    /// through two mounts or on a file system without fixed numbers; then equal size, modification time, and
    /// first and last bytes count. A copy with all of these is taken for the file itself.
    bool holds(int file) const;

    /// Renames the file here to "NAME (WORD).EXTENSION", or "NAME (WORD 2).EXTENSION" and so on where that
    /// exists. Shortens NAME to the longest name that the file system accepts. Returns the new name; empty
    /// if there is no file or it could not be renamed. Never replaces another file.
    std::string putAside(const std::string& word) const;

    /// Waits until the names in the folder are on the disk. Errors are ignored: some file systems cannot do
    /// it.
    void sync() const;

private:
    std::string m_folderPath;
    std::string m_name;
    int m_folder = -1;
};

/// Whether a file system of this type (statfs) gives a file one number, under whatever name it is opened.
/// FUSE file systems, and clients of servers that know no numbers or ignore the case of names, can give it
/// two.
bool givesFixedNumbers(std::uint32_t fileSystem);

/// Renames a file in the folder; fails with EEXIST if the new name exists.
bool renameToFreeName(int folder, const std::string& from, const std::string& to);
