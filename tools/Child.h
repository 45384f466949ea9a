// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

/// What a child process is to run, on which descriptors, and the only files of the user's that it can reach.
/// -1 stands for the null device; standard input always is.
struct ChildPlan {
    std::string program;
    std::vector<std::string> arguments;
    int standardOutput = -1;
    int standardError = -1;
    std::string input; // the file that it may read
    int output = -1; // the file that it may write, under this number for the child too
    bool isBrief = false; // a report is; see Reach
    bool isHeard = false; // what it says on standard error is passed on, in whole lines
};

/// Starts the child, confined; it ends with this process, however that ends. -1 where no process could be
/// made. A program that cannot be run makes the child exit with 127 after it has said so on this process's
/// standard error.
pid_t startChild(const ChildPlan& plan);

/// Whether the child has ended; waitForChild is still due.
bool hasEnded(pid_t child);

/// A descriptor with something to read once the child has ended, to be closed by the caller; -1 where the
/// kernel has no such thing. Then hasEnded, asked every exitCheckInterval, must do.
int descriptorOfEnd(pid_t child);
constexpr int exitCheckInterval = 5; // milliseconds

/// Waits for the child's end: its exit status, or 128 and the signal's number.
int waitForChild(pid_t child);

/// Runs the child until its standard output ends; all it printed there. `status` gets what waitForChild
/// gives, and never 0 where the output could not be read to its end. A child that lives on long after its
/// output, or when there is something to read at `wishToStop`, is killed.
std::string outputOfChild(ChildPlan plan, int& status, int wishToStop = -1);

/// Opens standard descriptors that are closed on the null device, so that no other file takes their numbers.
void holdStandardDescriptors();

/// Whether reading the file can wait for somebody else for ever, as reading a pipe that was given a name can.
bool canKeepWaiting(const std::string& path);

/// The path of ffmpeg or ffprobe: the one beside this program where there is one, else the system's.
std::string pathOfTool(const std::string& name);
