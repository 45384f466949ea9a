// SPDX-License-Identifier: MIT
#include "tests/fuzz/SnifferOutput.h"

#include "platform/Bundle.h"
#include "platform/Diagnostics.h"
#include "platform/FileHandle.h"
#include "platform/Process.h"

namespace
{

std::string snifferOutput;

} // namespace

namespace tarnwell
{

void test::setSnifferOutput(const std::string& output)
{
    snifferOutput = output;
}

Bundle::Bundle(std::string executableFolder)
    : m_executableFolder(std::move(executableFolder))
{
}

std::optional<std::string> Bundle::pathForResource(std::string_view name) const
{
    return m_executableFolder + "/" + std::string(name);
}

FileHandle::FileHandle(int descriptor)
    : m_descriptor(descriptor)
    , m_atEnd(false)
{
}

FileHandle::~FileHandle() = default;

std::string FileHandle::readDataToEndOfFile()
{
    return snifferOutput;
}

Pipe::Pipe()
    : m_reading(std::make_shared<FileHandle>(-1))
{
}

Pipe::~Pipe() = default;

std::error_code Process::launch()
{
    return {};
}

void Process::waitUntilExit() { }

void printLine(std::string_view) { }

} // namespace tarnwell
