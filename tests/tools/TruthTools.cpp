// SPDX-License-Identifier: MIT
#include "tests/tools/TruthTools.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <poll.h>
#include <spawn.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace tarnwell::test
{

namespace
{

const std::string ffmpeg = "/usr/bin/ffmpeg";
const std::string ffprobe = "/usr/bin/ffprobe";

constexpr int cannotBeRun = 127;
constexpr int signalBase = 128;
constexpr std::int32_t one = 65536;
constexpr std::int32_t perspectiveOne = 1073741824;

// in a track header of version 0; version 1 has three 64-bit fields before the matrix
constexpr std::size_t matrixOffset = 40;
constexpr std::size_t longerTimes = 12;
constexpr std::size_t handlerKindOffset = 8;
constexpr std::size_t boxHeader = 8;

struct Pipe {
    int reading = -1;
    int writing = -1;
};

Pipe makePipe()
{
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        std::perror("pipe2");
        std::exit(EXIT_FAILURE);
    }
    return {ends[0], ends[1]};
}

pid_t start(const Command& command, int output, int errorMessages)
{
    std::vector<char*> arguments;
    for (const auto& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, errorMessages, STDERR_FILENO);
    pid_t child = -1;
    const int error = ::posix_spawn(&child, command[0].c_str(), &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? child : -1;
}

/// Appends one chunk to `text`. At the end sets the descriptor to -1, which poll ignores.
void readPiece(pollfd& stream, std::string& text)
{
    std::array<char, 65536> piece{};
    const ssize_t count = stream.revents != 0 ? ::read(stream.fd, piece.data(), piece.size()) : -1;
    if (count > 0)
        text.append(piece.data(), static_cast<std::size_t>(count));
    if (count == 0)
        stream.fd = -1;
}

struct Box {
    std::size_t content = 0; // 0 for a missing box
    std::size_t end = 0;
};

std::uint32_t bigEndian(const std::string& bytes, std::size_t place)
{
    std::uint32_t number = 0;
    for (std::size_t byte = place; byte < place + 4; ++byte)
        number = number << 8U | static_cast<unsigned char>(bytes.at(byte));
    return number;
}

/// All boxes of that type between the two offsets. Each box must have a 32-bit size.
std::vector<Box> boxes(const std::string& movie, const Box& parent, const std::string& type)
{
    std::vector<Box> found;
    for (std::size_t place = parent.content; place + boxHeader <= parent.end;) {
        const std::size_t size = bigEndian(movie, place);
        if (size < boxHeader || size > parent.end - place)
            return {};
        if (movie.compare(place + 4, 4, type) == 0)
            found.push_back({place + boxHeader, place + size});
        place += size;
    }
    return found;
}

Box firstBox(const std::string& movie, const Box& parent, const std::string& type)
{
    const auto found = boxes(movie, parent, type);
    return found.empty() ? Box{} : found.front();
}

bool isVideoTrack(const std::string& movie, const Box& track)
{
    const Box handler = firstBox(movie, firstBox(movie, track, "mdia"), "hdlr");
    return handler.content != 0 && movie.compare(handler.content + handlerKindOffset, 4, "vide") == 0;
}

std::string bytesOf(const MatrixNumbers& numbers)
{
    std::string bytes;
    for (const std::int32_t number : numbers) {
        for (unsigned shift = 32; shift > 0; shift -= 8)
            bytes += static_cast<char>(static_cast<std::uint32_t>(number) >> (shift - 8) & 0xFFU);
    }
    return bytes;
}

} // namespace

Outcome run(const Command& command)
{
    const Pipe output = makePipe();
    const Pipe errorMessages = makePipe();
    const pid_t child = start(command, output.writing, errorMessages.writing);
    ::close(output.writing);
    ::close(errorMessages.writing);
    Outcome outcome;
    std::array<pollfd, 2> streams = {{{output.reading, POLLIN, 0}, {errorMessages.reading, POLLIN, 0}}};
    while (streams[0].fd >= 0 || streams[1].fd >= 0) {
        ::poll(streams.data(), streams.size(), -1);
        readPiece(streams[0], outcome.output);
        readPiece(streams[1], outcome.errorMessages);
    }
    ::close(output.reading);
    ::close(errorMessages.reading);
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child)
        outcome.status = cannotBeRun;
    else
        outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : signalBase + WTERMSIG(status);
    return outcome;
}

std::string readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeFile(const std::string& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

std::set<std::string> namesIn(const std::string& folder)
{
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.insert(entry.path().filename().string());
    return names;
}

std::string ffmpegVersion()
{
    const std::string text = run({ffmpeg, "-version"}).output;
    return text.substr(0, text.find('\n'));
}

bool hasEncoder(const std::string& name)
{
    return run({ffmpeg, "-v", "error", "-encoders"}).output.find(" " + name + " ") != std::string::npos;
}

Picture decodedFrame(const std::string& path, const std::string& seconds, Rotation rotation)
{
    Command command = {ffmpeg, "-v", "error", "-nostdin"};
    if (rotation == Rotation::Ignored)
        command.emplace_back("-noautorotate");
    // Some versions skip the only frame of a still even if they seek to 0.
    if (!seconds.empty())
        command.insert(command.end(), {"-ss", seconds});
    const Command rest = {"-i", path, "-frames:v", "1", "-f", "image2pipe", "-c:v", "ppm", "-"};
    command.insert(command.end(), rest.begin(), rest.end());
    return parsePixmap(run(command).output);
}

void makeMovie(const std::string& path, const Recipe& recipe)
{
    const std::string size = std::to_string(recipe.width) + "x" + std::to_string(recipe.height);
    const std::string quarter = ":w=iw/4:h=ih/4:t=fill:color=";
    const std::string picture = "color=c=gray:size=" + size + ":rate=25:duration=2,format=yuv444p,"
        + "geq=lum='60+90*X/W+50*Y/H+12*T':cb=128:cr=128," + "drawbox=x=0:y=0" + quarter
        + "red,drawbox=x=iw-iw/4:y=0" + quarter + "green," + "drawbox=x=0:y=ih-ih/4" + quarter
        + "blue,drawbox=x=iw-iw/4:y=ih-ih/4" + quarter + "yellow";
    const Outcome outcome = run({ffmpeg, "-v", "error", "-nostdin", "-f", "lavfi", "-i", picture, "-f",
        "lavfi", "-i", "sine=frequency=440:duration=2", "-c:v", recipe.encoder, "-q:v", "2", "-pix_fmt",
        "yuv420p", "-c:a", "aac", "-y", path});
    if (outcome.status != 0)
        std::fprintf(stderr, "%s", outcome.errorMessages.c_str());
}

MatrixNumbers numbersOf(const Matrix& m, int width, int height)
{
    const int left = std::min(0, m.a * width + m.c * height);
    const int top = std::min(0, m.b * width + m.d * height);
    return {m.a * one, m.b * one, 0, m.c * one, m.d * one, 0, -left * one, -top * one, perspectiveOne};
}

std::string withMatrix(std::string movie, const MatrixNumbers& numbers)
{
    const Box tracks = firstBox(movie, {0, movie.size()}, "moov");
    for (const Box& track : boxes(movie, tracks, "trak")) {
        const Box header = firstBox(movie, track, "tkhd");
        if (header.content == 0 || !isVideoTrack(movie, track))
            continue;
        const bool isLong = movie.at(header.content) == '\1';
        const std::string bytes = bytesOf(numbers);
        movie.replace(header.content + matrixOffset + (isLong ? longerTimes : 0), bytes.size(), bytes);
        return movie;
    }
    return {};
}

MatrixNumbers reportedMatrix(const std::string& path)
{
    const Outcome probe = run(
        {ffprobe, "-v", "error", "-select_streams", "v:0", "-show_streams", "-print_format", "json", path});
    if (probe.status != 0)
        return {};
    std::string text = textMember(probe.output, "displaymatrix");
    if (text.empty())
        return numbersOf({}, 0, 0);
    // Three numbered rows; the report escapes the ends of lines.
    for (auto end = text.find("\\n"); end != std::string::npos; end = text.find("\\n"))
        text.replace(end, 2, " ");
    std::istringstream words(text);
    MatrixNumbers numbers = {};
    for (std::size_t place = 0; place < numbers.size(); ++place) {
        std::string row;
        if (place % 3 == 0)
            words >> row;
        words >> numbers[place];
    }
    return words ? numbers : MatrixNumbers{};
}

std::string textMember(const std::string& report, const std::string& member)
{
    const std::string beginning = "\"" + member + "\": \"";
    const auto begin = report.find(beginning);
    if (begin == std::string::npos)
        return {};
    const auto value = begin + beginning.size();
    return report.substr(value, report.find('"', value) - value);
}

} // namespace tarnwell::test
