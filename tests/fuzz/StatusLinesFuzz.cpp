// SPDX-License-Identifier: MIT
// Input: any bytes as ffmpeg's progress output and as its error messages. creator prints complete lines, and
// the application reads the time only from its status lines.
#include "export/Progress.h"
#include "tests/fuzz/Verify.h"
#include "tools/StatusLines.h"

#include <algorithm>

namespace tarnwell::test
{

namespace
{

constexpr std::size_t longestLine = 4096; // with its newline; PIPE_BUF, the largest atomic write to a pipe

bool isStatusLine(const std::string& line)
{
    const std::string form = "time=00:00:00.00";
    if (line.size() != form.size())
        return false;
    for (std::size_t place = 0; place < form.size(); ++place) {
        const bool isDigit = line[place] >= '0' && line[place] <= '9';
        if (form[place] == '0' ? !isDigit : line[place] != form[place])
            return false;
    }
    return line[8] < '6' && line[11] < '6';
}

void checkLines(const std::string& text, bool (*isRight)(const std::string&), const char* what)
{
    for (std::size_t begin = 0; begin < text.size();) {
        const auto end = text.find('\n', begin);
        verify(end != std::string::npos, "each line ends with a newline");
        verify(end - begin < longestLine, "a line fits into one write");
        verify(isRight(text.substr(begin, end - begin)), what);
        begin = end + 1;
    }
}

bool isErrorMessage(const std::string& line)
{
    return !line.empty() && line.find("time=") == std::string::npos
        && std::all_of(line.begin(), line.end(), [](char letter) { return letter >= ' ' && letter <= '~'; });
}

template <typename Reader>
std::string readWhole(const std::string& text)
{
    Reader reader;
    return reader.read(text);
}

template <typename Reader>
std::string readInPieces(const std::string& text, Choices& choices)
{
    Reader reader;
    std::string lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t size = 1 + choices.below(64);
        lines += reader.read(text.substr(begin, size));
        begin += size;
    }
    return lines;
}

} // namespace

} // namespace tarnwell::test

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tarnwell;
    using namespace tarnwell::test;
    const std::string text = bytesOf(data, size);
    Choices choices(text);
    const std::string status = readWhole<ProgressReader>(text);
    const std::string errorMessages = readWhole<ErrorMessageReader>(text);
    checkLines(status, isStatusLine, "progress contains only status lines");
    checkLines(errorMessages, isErrorMessage, "an error message is not a status line");
    verify(status == readInPieces<ProgressReader>(text, choices), "progress does not depend on the chunks");
    verify(errorMessages == readInPieces<ErrorMessageReader>(text, choices),
        "error messages do not depend on the chunks");
    verify(!elapsedSecondsFromChunk(errorMessages), "error messages contain no time");
    // Both use the same pipe, so a chunk may contain parts of each.
    const auto elapsed = elapsedSecondsFromChunk(errorMessages + statusLine(1000000));
    verify(elapsed == 1.0, "an error message is not read as a time");
    if (!status.empty())
        verify(elapsedSecondsFromChunk(errorMessages + status) == elapsedSecondsFromChunk(status),
            "the time is that of the first status line");
    return 0;
}
