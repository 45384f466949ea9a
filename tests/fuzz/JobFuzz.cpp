// SPDX-License-Identifier: MIT
// Input: any lines as creator's arguments. The list is one of the three jobs or is rejected, and each text of
// a job stays within one argument of ffmpeg.
#include "tests/fuzz/Verify.h"
#include "tools/Job.h"

#include <algorithm>
#include <sstream>

namespace tarnwell::test
{

namespace
{

using Arguments = std::vector<std::string>;

Arguments linesOf(const std::string& text)
{
    Arguments lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

/// The argument list of the job, with the rotation argument as it was in the input.
Arguments listOf(const Job& job, const std::string& spelledRotation)
{
    switch (job.kind) {
    case Job::Kind::Still:
        return {"-v", "quiet", "-ss", job.position, "-i", job.input, "-frames:v", "1", "-y", job.output};
    case Job::Kind::FixFlag:
        return {"-i", job.input, "-c:v", "copy", "-c:a", "copy", "-metadata:s:v", spelledRotation, "-y",
            job.output};
    case Job::Kind::Transcode:
        if (job.filters.empty())
            return {"-i", job.input, "-pix_fmt", "yuv420p", "-metadata:s:v", "rotate=0", "-y", job.output};
        return {"-i", job.input, "-pix_fmt", "yuv420p", "-vf", job.filters, "-metadata:s:v", "rotate=0", "-y",
            job.output};
    }
    return {};
}

bool isRotation(const std::string& argument, double degrees)
{
    const std::string prefix = "rotate=";
    return argument.compare(0, prefix.size(), prefix) == 0
        && static_cast<double>(std::strtoll(argument.c_str() + prefix.size(), nullptr, 10)) == degrees;
}

/// Each text of the job is within one argument of ffmpeg, and no other argument depends on it.
void checkEncoder(const Job& job)
{
    const Target target = {"/out", "mp4"};
    const Arguments list = ffmpegArguments(job, target);
    Job other = job;
    other.input = "INPUT";
    other.position = job.position.empty() ? "" : "POSITION";
    other.filters = job.filters.empty() ? "" : "FILTERS";
    const Arguments otherList = ffmpegArguments(other, target);
    verify(list.size() == otherList.size(), "the number of arguments does not depend on the texts");
    for (std::size_t place = 0; place < list.size(); ++place) {
        const std::string& text = otherList[place];
        if (text == "file:INPUT")
            verify(list[place] == "file:" + job.input && list[place - 1] == "-i", "the input is one file");
        else if (text == "POSITION")
            verify(list[place] == job.position && list[place - 1] == "-ss", "the position is one argument");
        else if (text.compare(0, 8, "FILTERS,") == 0)
            verify(list[place] == job.filters + text.substr(7), "the filters come first");
        else
            verify(list[place] == text, "all other arguments are constant");
    }
    verify(list[0] == "-nostdin" && list.back() == target.path,
        "ffmpeg does not read standard input and writes to its target");
    verify(std::count(list.begin(), list.end(), "file:" + job.input) == 1, "there is one input");
}

} // namespace

} // namespace tarnwell::test

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tarnwell::test;
    const Arguments arguments = linesOf(bytesOf(data, size));
    const auto job = readJob(arguments);
    if (!job)
        return 0;
    const std::string rotation = job->kind == Job::Kind::FixFlag ? arguments[7] : "";
    Arguments expected = listOf(*job, rotation);
    if (job->kind == Job::Kind::Transcode && job->filters.empty() && arguments.size() == expected.size() + 2)
        expected.insert(expected.begin() + 4, {"-vf", ""});
    verify(arguments == expected, "the job corresponds to the list");
    verify(job->kind != Job::Kind::FixFlag || isRotation(rotation, job->rotation),
        "the rotation is that of the list");
    checkEncoder(*job);
    return 0;
}
