// SPDX-License-Identifier: MIT
// The probe tool: prints ffprobe's report on one file, with the rotation that decoders apply.
#include "tools/Child.h"
#include "tools/InputFile.h"
#include "tools/Report.h"
#include "tools/StandardError.h"
#include "tools/StatusLines.h"

#include <cerrno>
#include <csignal>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{

constexpr int noFile = 1;
constexpr int notWritten = 1;

/// False if the text could not be written completely.
bool writeAll(const std::string& text)
{
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t count = ::write(STDOUT_FILENO, text.data() + done, text.size() - done);
        if (count < 0 && errno != EINTR)
            return false;
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return true;
}

} // namespace

int main(int argc, char* argv[])
{
    openStandardDescriptors();
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGCHLD, SIG_DFL); // waitpid fails if the caller ignores SIGCHLD
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const std::string path = arguments.empty() ? "" : arguments.back();
    const InputFile input(path);
    if (input.isOtherKind()) {
        writeErrorLines("tarnwell: " + withoutStatusMarks(path) + ": " + input.error() + "\n");
        // The format of ffprobe's report on an unreadable file.
        writeAll("{\n    \"error\": {\n        \"code\": -22,\n        \"string\": \"Invalid argument\"\n    "
                 "}\n}\n");
        return noFile;
    }
    ChildPlan ffprobe;
    ffprobe.program = pathOfTool("ffprobe");
    ffprobe.arguments = arguments;
    ffprobe.onErrors = [](const std::string& lines) { writeErrorLines(lines); };
    ffprobe.input = input.descriptor(); // -1: ffprobe reports why the file cannot be opened
    ffprobe.isProbe = true;
    int status = 0;
    const std::string report = outputOfChild(ffprobe, status);
    const bool isWritten = writeAll(withTrueRotation(report));
    return status == 0 && !isWritten ? notWritten : status;
}
