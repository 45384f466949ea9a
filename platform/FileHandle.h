// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>

namespace tarnwell
{

/// The reading end of a pipe: a descriptor that it owns and closes.
class FileHandle : public std::enable_shared_from_this<FileHandle>
{
public:
    using ReadabilityHandler = std::function<void(FileHandle&)>;

    /// Takes over `descriptor`; -1 makes a handle that is at its end.
    explicit FileHandle(int descriptor);
    ~FileHandle();
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    /// The bytes that are there now, at most one pipe's fill; waits for the first of them. Empty at the end.
    std::string availableData();

    /// All bytes up to the end.
    std::string readDataToEndOfFile();

    /// From now on calls `handler` on a thread of the handle's own whenever bytes are there, and once at the
    /// end, which it recognises by reading nothing. The handler must read. The thread keeps the handle alive.
    void setReadabilityHandler(ReadabilityHandler handler);

private:
    void deliver(const ReadabilityHandler& handler);

    int m_descriptor;
    std::atomic<bool> m_atEnd;
};

/// A pipe whose two ends no child inherits unless a Process hands it one.
class Pipe
{
public:
    Pipe();
    ~Pipe();
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    const std::shared_ptr<FileHandle>& fileHandleForReading() const { return m_reading; }

    /// -1 after closeWriting, and where the system had no pipe to give.
    int writingDescriptor() const { return m_writing; }

    /// The parent's part once a child holds the writing end: without it the reader never sees the end.
    void closeWriting();

private:
    std::shared_ptr<FileHandle> m_reading;
    int m_writing = -1;
};

} // namespace tarnwell
