// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// A file that appears at its place whole or not at all. Until it is finished it has no name, or on file
/// systems that cannot do that a hidden one of its own beside its place; whatever stands at the place stays
/// untouched.
class OutputFile
{
public:
    explicit OutputFile(std::string path);
    /// What is not finished vanishes.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    bool isOpen() const { return m_descriptor >= 0; }
    int descriptor() const { return m_descriptor; }

    /// A path by which a child that keeps the descriptor can write the file.
    std::string writablePath() const;

    /// Throws away what was written so far.
    void empty() const;
    bool isEmpty() const;

    /// Brings the data to the disk. False where that failed.
    bool bringToDisk() const;

    /// Moves the file to its place, over what stands there, which is kept beside it under a hidden name as
    /// long as this object lives. False where that failed; then nothing has changed.
    bool moveToPlace();

    /// Undoes that: what stood at the place is there again, where the file system can exchange files.
    void takeBack();

private:
    void openNameless();
    void openHidden();
    void removeForsaken() const;
    bool linkHidden();
    bool exchange() const;

    std::string m_path;
    std::string m_hiddenPath; // of this file, or of the older one once they are exchanged; else empty
    int m_descriptor = -1;
};

/// Renames what stands at `path` to a name that says so, "NAME (WORD).EXTENSION", counting on where that is
/// taken. The new path; empty where no file was there or it could not be renamed. Never over another file;
/// folders stay.
std::string putAside(const std::string& path, const std::string& word);

/// Whether anything but a folder stands at `path`.
bool isFileAt(const std::string& path);

/// Whether what stands at `path`, and is no symbolic link itself, is the file that `file` leads to.
bool isEntryOf(const std::string& path, const std::string& file);
