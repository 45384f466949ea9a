// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

/// The program, standard streams and accessible files of a child process. The descriptor -1 means the null
/// device, which is always standard input.
struct ChildPlan {
    std::string program;
    std::vector<std::string> arguments;
    int standardOutput = -1;
    int standardError = -1;
    int input = -1; // the file that it may read; it opens the file by the path in its arguments and does not
                    // inherit the descriptor. Another file that replaces it at its path is not accessible.
    int output = -1; // the file that it may write; it inherits the descriptor under the same number
    bool isProbe = false; // applies the resource limits of a report, see AccessRights
    std::function<void(const std::string& lines)>
        onErrors; // outputOfChild calls it with whole lines of its standard error; may be empty
};

/// Starts the child, confined. The kernel kills it when this process ends for any reason. Returns -1 if no
/// process could be created. If the program cannot be executed, the child writes the reason to this process's
/// standard error and exits with 127.
pid_t startChild(const ChildPlan& plan);

/// Whether the child has ended. The caller must still call waitForChild.
bool hasEnded(pid_t child);

/// A descriptor that becomes readable when the child ends; the caller closes it. -1 if the kernel does not
/// support it (before 5.3): then call hasEnded every exitCheckInterval.
int openExitDescriptor(pid_t child);
constexpr int exitCheckInterval = 5; // milliseconds

/// Waits until the child ends. Returns its exit status, or 128 plus the number of the signal that killed it.
int waitForChild(pid_t child);

// A report over a slow network takes a few seconds. The limit is for a child that blocks without processor
// time, for example on a pipe that has replaced the file on a kernel without file rules.
constexpr std::chrono::minutes longestReport(2);

/// Runs the child and returns its standard output. Sets `status` to the result of waitForChild, but never to
/// 0 if the output could not be read to its end. Kills the child if it runs for more than a second after the
/// end of its output, writes more than mostOutput, exceeds the time limit, or if `stopDescriptor` becomes
/// readable.
std::string outputOfChild(
    ChildPlan plan, int& status, int stopDescriptor = -1, std::chrono::milliseconds longest = longestReport);
constexpr std::size_t mostOutput = std::size_t(128) << 20U;

/// Opens closed standard descriptors on the null device, so that no other file gets their numbers.
void openStandardDescriptors();

/// The path of ffmpeg or ffprobe: in the folder of this program if it exists there, else in the folder that
/// the build sets (TARNWELL_FFMPEG_FOLDER).
std::string pathOfTool(const std::string& name);
