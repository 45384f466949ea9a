// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>

namespace tarnwell
{

/// The reading end of a pipe. Owns the descriptor.
class FileHandle : public std::enable_shared_from_this<FileHandle>
{
public:
    using ReadabilityHandler = std::function<void(FileHandle&)>;

    /// Takes ownership of `descriptor`. A handle for -1 is at end of file.
    explicit FileHandle(int descriptor);
    ~FileHandle();
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    /// Blocks until data is available and returns at most 64 KiB of it. Empty at end of file and on errors.
    std::string availableData();

    /// Blocks until end of file and returns all bytes up to there.
    std::string readDataToEndOfFile();

    /// Starts a thread that calls `handler` whenever data is available and once at end of file, when
    /// availableData returns nothing. The handler must read. The thread keeps this object alive until end of
    /// file.
    void setReadabilityHandler(ReadabilityHandler handler);

private:
    void deliver(const ReadabilityHandler& handler);

    int m_descriptor;
    std::atomic<bool> m_atEnd;
};

/// A pipe. Both ends are close-on-exec; only a Process passes the writing end to its child.
class Pipe
{
public:
    Pipe();
    ~Pipe();
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    const std::shared_ptr<FileHandle>& fileHandleForReading() const { return m_reading; }

    /// -1 after closeWriting and if the system could not create the pipe.
    int writingDescriptor() const { return m_writing; }

    /// Call it once a child has the writing end: an open writing end in the parent prevents end of file.
    void closeWriting();

private:
    std::shared_ptr<FileHandle> m_reading;
    int m_writing = -1;
};

} // namespace tarnwell
