// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>
#include <sys/types.h>
#include <vector>

/// What a child process runs, its standard streams, and the only files of the user's that it can access. The
/// descriptor -1 stands for the null device, which standard input always is.
struct ChildPlan {
    std::string program;
    std::vector<std::string> arguments;
    int standardOutput = -1;
    int standardError = -1;
    int input = -1; // the file that it may read: it opens it by the path in its arguments, whereas the
                    // descriptor is not inherited. What another program puts at the path is not accessible.
    int output = -1; // the file that it may write; the child inherits the descriptor under the same number
    bool isProbe = false; // it has the resource limits of a report, see Reach
    bool forwardsErrors = false; // whole lines of its standard error go to that of this process
};

/// Starts the child, confined. It is killed when this process ends in any way. Returns -1 where no process
/// could be created. Where the program cannot be run, the child writes the reason to this process's standard
/// error and exits with 127.
pid_t startChild(const ChildPlan& plan);

/// Whether the child has ended. waitForChild must still be called.
bool hasEnded(pid_t child);

/// A descriptor that becomes readable when the child ends; the caller closes it. -1 where the kernel has none
/// (before 5.3): then call hasEnded every exitCheckInterval.
int openExitDescriptor(pid_t child);
constexpr int exitCheckInterval = 5; // milliseconds

/// Waits until the child ends. Returns its exit status, or 128 plus the number of the signal that killed it.
int waitForChild(pid_t child);

// A report takes a few seconds from a slow network. What blocks without processor time, such as a pipe that
// has replaced the file on a kernel without file rules, ends then.
constexpr std::chrono::minutes longestReport(2);

/// Runs the child and returns what it writes to its standard output, to the end of that. `status` is set as
/// waitForChild returns it, but never to 0 where the output could not be read to its end. The child is killed
/// where it runs for more than a second after that, writes more than mostOutput, has not ended its output
/// when the time is over, or when `stopDescriptor` becomes readable.
std::string outputOfChild(
    ChildPlan plan, int& status, int stopDescriptor = -1, std::chrono::milliseconds longest = longestReport);
constexpr std::size_t mostOutput = std::size_t(128) << 20U;

/// Opens closed standard descriptors on the null device, so that no other file is opened under their numbers.
void openStandardDescriptors();

/// The path of ffmpeg or ffprobe: in the folder of this program where it exists there, else in the folder
/// that the build sets (TARNWELL_FFMPEG_FOLDER).
std::string pathOfTool(const std::string& name);
