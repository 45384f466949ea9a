// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// A file that appears at its path whole or not at all. Until it is moved there it has no name or, on file
/// systems without unnamed files, a hidden name in the same folder. A file that exists at the path stays
/// untouched until then.
class OutputFile
{
public:
    explicit OutputFile(std::string path);
    /// Deletes a file that has not been moved to its path.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    bool isOpen() const { return m_descriptor >= 0; }
    int descriptor() const { return m_descriptor; }

    /// A path under which a child process that inherits the descriptor can write the file.
    std::string writablePath() const;

    /// Deletes the content.
    void empty() const;
    bool isEmpty() const;

    /// Waits until the data is on the disk. False on an error.
    bool sync() const;

    /// Moves the file to its path. A file that exists there is kept in the folder under a hidden name until
    /// this object is destroyed. False on an error; then nothing has changed.
    bool moveToPath();

    /// Undoes moveToPath: a file that existed at the path is there again, where the file system can exchange
    /// files.
    void undoMove();

private:
    void openUnnamed();
    void openHidden();
    void removeStale() const;
    bool linkHidden();
    bool exchange() const;

    std::string m_path;
    std::string m_hiddenPath; // of this file or, after an exchange, of the older one; else empty
    int m_descriptor = -1;
};

/// Renames the file at `path` to "NAME (WORD).EXTENSION", or "NAME (WORD 2).EXTENSION" and so on where that
/// exists. Returns the new path; empty where there is no file or it could not be renamed. Never replaces
/// another file. Folders stay.
std::string putAside(const std::string& path, const std::string& word);

/// Whether `path` exists and is no folder.
bool isFileAt(const std::string& path);

/// Whether `path`, not followed where it is a symbolic link, is the same file as `file`, which is followed.
bool isEntryOf(const std::string& path, const std::string& file);
