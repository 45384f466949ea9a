// SPDX-License-Identifier: MIT
#pragma once

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
    std::string input; // the path of the file that it may read
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

/// Runs the child and returns what it writes to its standard output, to the end of that. `status` is set as
/// waitForChild returns it, but never to 0 where the output could not be read to its end. The child is killed
/// where it runs for more than a second after that, or when `stopDescriptor` becomes readable.
std::string outputOfChild(ChildPlan plan, int& status, int stopDescriptor = -1);

/// Opens closed standard descriptors on the null device, so that no other file is opened under their numbers.
void openStandardDescriptors();

/// Whether the path is a pipe, a socket or a character device, from which a read can block without an end.
bool canBlock(const std::string& path);

/// The path of ffmpeg or ffprobe: in the folder of this program where it exists there, else in the folder
/// that the build sets (TARNWELL_FFMPEG_FOLDER).
std::string pathOfTool(const std::string& name);
