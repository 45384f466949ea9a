// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <string>

/// The path of an output file: a folder and a name in it. The folder is opened once and every operation uses
/// its descriptor, so that all of them use the same folder even if it is renamed and another folder or a link
/// replaces it at its path.
class OutputPlace
{
public:
    explicit OutputPlace(const std::string& path);
    ~OutputPlace();
    OutputPlace(const OutputPlace&) = delete;
    OutputPlace& operator=(const OutputPlace&) = delete;

    bool isOpen() const { return m_folder >= 0; }

    /// A descriptor opened with O_PATH: for the calls whose names end in "at" and for fstat only.
    int folder() const { return m_folder; }

    const std::string& name() const { return m_name; }

    /// The path of another name in the folder, with the caller's spelling of the folder.
    std::string pathOf(const std::string& name) const;

    /// Whether a file or a symbolic link, which is not followed, has this name. False for a folder.
    bool hasFile() const;

    /// Whether the same file is here as when this object was created, or still none: whether size and
    /// modification time are the same, those of a link's target, too. The application compares the same.
    bool isUnchanged() const;

    /// Whether the file here is the open regular file `file`. Their numbers can differ if the file is seen
    /// through two mounts or on a file system without fixed numbers; then equal size, modification time, and
    /// first and last bytes count. A copy with all of these is taken for the file itself.
    bool holds(int file) const;

    /// Renames the file to "NAME (WORD).EXTENSION", or to "NAME (WORD 2).EXTENSION" and so on if that exists.
    /// Shortens NAME to the length that the file system accepts. Returns the new name; empty if there is no
    /// file or it could not be renamed, with the reason in errno as in renameToFreeName. Never replaces
    /// another file.
    std::string putAside(const std::string& word) const;

    /// Waits until the names in the folder are on the disk. Ignores errors: some file systems do not support
    /// it.
    void sync() const;

private:
    /// Sizes and modification times of the item and, if it is a link, of its target; zeros without a file.
    using Fingerprint = std::array<std::int64_t, 6>;
    Fingerprint fingerprint() const;

    std::string m_folderPath;
    std::string m_name;
    int m_folder = -1;
    Fingerprint m_atStart;
};

/// Whether a file system of this type (statfs) gives a file one number, under whatever name it is opened.
/// FUSE file systems, and clients of servers that know no numbers or ignore the case of names, can give it
/// two.
bool givesFixedNumbers(std::uint32_t fileSystem);

/// Renames a file in the folder. Fails with EEXIST if the new name exists, and with ENOTSUP if the folder
/// shows only one name to other programs (see DocumentPortal.h).
bool renameToFreeName(int folder, const std::string& from, const std::string& to);
