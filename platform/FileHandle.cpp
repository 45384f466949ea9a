// SPDX-License-Identifier: MIT
#include "platform/FileHandle.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

namespace tarnwell
{

namespace
{

constexpr std::size_t pipeCapacity = 65536; // bytes, Linux's default

} // namespace

FileHandle::FileHandle(int descriptor)
    : m_descriptor(descriptor)
    , m_atEnd(descriptor < 0)
{
}

FileHandle::~FileHandle()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

std::string FileHandle::availableData()
{
    if (m_atEnd)
        return {};
    std::string data(pipeCapacity, '\0');
    ssize_t count = -1;
    do {
        count = ::read(m_descriptor, data.data(), data.size());
    } while (count < 0 && errno == EINTR);
    m_atEnd = count <= 0;
    data.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return data;
}

std::string FileHandle::readDataToEndOfFile()
{
    std::string data;
    for (std::string chunk = availableData(); !chunk.empty(); chunk = availableData())
        data += chunk;
    return data;
}

void FileHandle::setReadabilityHandler(ReadabilityHandler handler)
{
    try {
        std::thread([self = shared_from_this(), handler = std::move(handler)] {
            self->deliver(handler);
        }).detach();
    } catch (const std::system_error&) {
        // Without a reader the writer would block; a closed pipe makes its writes fail.
        m_atEnd = true;
        ::close(std::exchange(m_descriptor, -1));
    }
}

void FileHandle::deliver(const ReadabilityHandler& handler)
{
    while (!m_atEnd) {
        pollfd waiting = {m_descriptor, POLLIN, 0};
        if (::poll(&waiting, 1, -1) > 0)
            handler(*this);
    }
}

Pipe::Pipe()
{
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0)
        ends[0] = ends[1] = -1;
    m_reading = std::make_shared<FileHandle>(ends[0]);
    m_writing = ends[1];
}

Pipe::~Pipe()
{
    closeWriting();
}

void Pipe::closeWriting()
{
    if (m_writing >= 0)
        ::close(m_writing);
    m_writing = -1;
}

} // namespace tarnwell
