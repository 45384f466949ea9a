// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Bundle.h"
#include "platform/TemporaryDirectory.h"
#include "platform/ToolContext.h"

#include <string>

namespace tarnwell::test
{

// clang-format off
/// A bundle in a separate folder with fake tools. Each fake runs a script of the test. A tool without a script
/// is missing from the bundle. A script is a list of commands, one per line; after the last one the tool exits
/// with 0:
///
/// print TEXT, error TEXT      writes to standard output or error without an end of line; \n, \r and
///                             \xHH are escape sequences
/// print-file PATH             writes the file to standard output
/// flood N                     writes N bytes to standard output
/// record PATH                 writes the arguments into the file, see recordedArguments
/// record-output PATH          appends a line with the last argument to the file
/// record-folder PATH          appends a line with the names in the folder of the last argument to the file
/// record-pid PATH             writes the process id into the file
/// copy PATH                   copies the file to the path in the last argument
/// touch PATH, wait-for PATH   creates the file; waits until it exists
/// wait-until-read             waits until the reader of standard error, a pipe, has read all of it
/// on-termination PATH         from now on a SIGTERM creates the file and exits with 255
/// ignore-termination          from now on a SIGTERM has no effect
/// sleep MILLISECONDS, hang    waits; hang does not end by itself. No wait takes longer than ten minutes
/// die SIGNAL, exit STATUS     ends
///
/// For a confined fake, which can write only to its streams and its output:
///
/// say-arguments, say-environment, say-descriptors, say-pid, say-session
///                             lines on standard error: "argument HEX", "variable HEX", "descriptor N
///                             TARGET", "pid N", "session N"
/// say-on-termination TEXT     from now on a SIGTERM writes the line to standard error and exits with 255
/// write-output TEXT, write-output-file PATH, flood-output N
///                             writes into the file that the last argument names
/// flood-error N, flood-status N
///                             writes N bytes to standard error, in one line without an end or in status
///                             lines
/// close N                     closes the descriptor
/// with WORD COMMAND, without WORD COMMAND
///                             runs the command only if WORD is an argument, or only if it is not
// clang-format on
class FakeTools
{
public:
    /// Sets the script for the next runs of the tool.
    void setSniffer(const std::string& script) { setTool("sniffer", script); }
    void setCreator(const std::string& script) { setTool("creator", script); }

    void removeSniffer();
    void removeCreator();

    /// Replaces the tool with a file that cannot be executed.
    void makeSnifferUnstartable() { makeUnstartable("sniffer"); }
    void makeCreatorUnstartable() { makeUnstartable("creator"); }

    /// Replaces the tool with the real one of the build tree.
    void useRealSniffer() { useRealTool("sniffer"); }
    void useRealCreator() { useRealTool("creator"); }

    /// Adds the picture "poster" of the build tree to the bundle.
    void addPoster();

    /// A folder for the test's files, with a trailing "/"; it is also the bundle's folder.
    const std::string& folder() const { return m_folder.path(); }

    Bundle bundle() const;
    ToolContext context() const { return {bundle(), waitBlocking}; }

private:
    void setTool(const std::string& name, const std::string& script);
    void makeUnstartable(const std::string& name);
    void useRealTool(const std::string& name);

    TemporaryDirectory m_folder;
};

} // namespace tarnwell::test
