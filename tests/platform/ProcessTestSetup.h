// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FileHandle.h"
#include "platform/Process.h"
#include "tests/support/FakeTools.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace tarnwell::test
{

/// A child that follows a script of the fake tool's, its standard output on a pipe.
class ProcessTestSetup : public testing::Test
{
protected:
    ProcessTestSetup() { m_process->setStandardOutput(m_output); }

    std::string path(const std::string& name) const { return m_tools.folder() + name; }

    void setScript(const std::string& script)
    {
        m_tools.setCreator(script);
        m_process->setExecutable(path("creator"));
    }

    void launch() { ASSERT_FALSE(m_process->launch()) << "not started"; }

    /// What the child prints up to its end.
    std::string printed() { return m_output->fileHandleForReading()->readDataToEndOfFile(); }

    /// Waits until the child prints; what it prints.
    std::string nextPrinted() { return m_output->fileHandleForReading()->availableData(); }

    FakeTools m_tools;
    std::shared_ptr<Pipe> m_output = std::make_shared<Pipe>();
    std::unique_ptr<Process> m_process = std::make_unique<Process>();
};

} // namespace tarnwell::test
