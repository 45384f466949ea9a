// SPDX-License-Identifier: MIT
// A fake of sniffer or creator. It is started through a link whose path is argv[0], and executes the file
// argv[0] + ".script" line by line. tests/support/FakeTools.h documents the commands.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <map>
#include <poll.h>
#include <sstream>
#include <string>
#include <sys/ioctl.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace
{

using Words = std::string;

char** toolArguments = nullptr;
int toolArgumentCount = 0;

std::string contentsOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeAll(int descriptor, const std::string& bytes)
{
    for (std::size_t done = 0; done < bytes.size();) {
        const auto count = ::write(descriptor, bytes.data() + done, bytes.size() - done);
        if (count <= 0)
            return; // the pipe has no reader
        done += static_cast<std::size_t>(count);
    }
}

std::string unescaped(const std::string& text)
{
    std::string result;
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] != '\\' || index + 1 == text.size()) {
            result += text[index];
            continue;
        }
        switch (text[++index]) {
        case 'n':
            result += '\n';
            break;
        case 'r':
            result += '\r';
            break;
        case 'x':
            result += static_cast<char>(std::stoi(text.substr(index + 1, 2), nullptr, 16));
            index += 2;
            break;
        default:
            result += text[index];
        }
    }
    return result;
}

/// Creates the file atomically, so that a process that waits for it reads all of it.
void leaveFile(const std::string& path, const std::string& contents)
{
    std::ofstream(path + ".part", std::ios::binary) << contents;
    std::filesystem::rename(path + ".part", path);
}

void record(const std::string& path)
{
    std::string all;
    for (int index = 1; index < toolArgumentCount; ++index)
        all.append(toolArguments[index]).append(1, '\0');
    leaveFile(path, all);
}

/// Appends one line: the names in the folder of the output, each followed by a space.
void recordFolder(const std::string& path)
{
    std::string line;
    const auto folder = std::filesystem::path(toolArguments[toolArgumentCount - 1]).parent_path();
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        line += entry.path().filename().string() + " ";
    std::ofstream(path, std::ios::binary | std::ios::app) << line << '\n';
}

void flood(int descriptor, const std::string& bytes)
{
    const std::string block(65536, 'x');
    for (auto left = std::stoull(bytes); left > 0;) {
        const auto count = std::min<unsigned long long>(left, block.size());
        writeAll(descriptor, block.substr(0, count));
        left -= count;
    }
}

void floodStatus(const std::string& bytes)
{
    const std::string line = "time=00:00:01.00 bitrate=1\n";
    std::string block;
    while (block.size() < 65536)
        block += line;
    for (auto left = std::stoll(bytes); left > 0; left -= static_cast<long long>(block.size()))
        writeAll(STDERR_FILENO, block);
}

std::string hexadecimal(const std::string& bytes)
{
    const std::string digits = "0123456789abcdef";
    std::string text;
    for (const char byte : bytes) {
        text += digits[static_cast<unsigned char>(byte) / 16];
        text += digits[static_cast<unsigned char>(byte) % 16];
    }
    return text;
}

void say(const std::string& line)
{
    writeAll(STDERR_FILENO, line + "\n");
}

void sayDescriptors()
{
    constexpr int highest = 1024;
    for (int descriptor = 0; descriptor < highest; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) < 0)
            continue;
        std::string target(4096, '\0');
        const auto length = ::readlink(
            ("/proc/self/fd/" + std::to_string(descriptor)).c_str(), target.data(), target.size());
        target.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
        say("descriptor " + std::to_string(descriptor) + " " + target);
    }
}

/// Overwrites an existing file in place, unlike leaveFile.
void writeOutput(const std::string& bytes)
{
    const int output
        = ::open(toolArguments[toolArgumentCount - 1], O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (output < 0)
        say("the output cannot be opened");
    writeAll(output, bytes);
    ::close(output);
}

void floodOutput(const std::string& bytes)
{
    const int output
        = ::open(toolArguments[toolArgumentCount - 1], O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    flood(output, bytes);
    ::close(output);
}

std::string lastWords;

void sayLastWords(int)
{
    say(lastWords);
    std::_Exit(255);
}

std::string terminationFile;

void onTermination(int)
{
    // Not async-signal-safe, but the signal can interrupt only a sleep here.
    leaveFile(terminationFile, "SIGTERM");
    std::_Exit(255);
}

/// Ends this process after the longest wait of a test, because a failed test may not have ended it.
void failAfterLongestWait(const std::string& awaited)
{
    static const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(10);
    if (std::chrono::steady_clock::now() < deadline)
        return;
    say("fakeTool: timeout waiting for " + awaited);
    std::_Exit(3);
}

void waitForFile(const std::string& path)
{
    while (!std::filesystem::exists(path)) {
        failAfterLongestWait(path);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

void hang()
{
    for (;;) {
        failAfterLongestWait("a signal");
        std::this_thread::sleep_for(std::chrono::seconds(1));
    }
}

/// Waits until the reader of standard error, a pipe, has read all of it, so that the next output is a
/// separate read. Also returns if the pipe has no reader.
void waitUntilRead()
{
    const auto isUnread = [] {
        int unread = 0;
        pollfd pipe = {STDERR_FILENO, 0, 0};
        return ::ioctl(STDERR_FILENO, FIONREAD, &unread) == 0 && unread > 0 && ::poll(&pipe, 1, 0) == 0;
    };
    while (isUnread()) {
        failAfterLongestWait("the reader of standard error");
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
}

const std::map<std::string, std::function<void(const Words&)>> commands = {
    {"print-file", [](const Words& path) { writeAll(STDOUT_FILENO, contentsOf(path)); }},
    {"print", [](const Words& text) { writeAll(STDOUT_FILENO, unescaped(text)); }},
    {"error", [](const Words& text) { writeAll(STDERR_FILENO, unescaped(text)); }},
    {"flood", [](const Words& count) { flood(STDOUT_FILENO, count); }},
    {"flood-error", [](const Words& count) { flood(STDERR_FILENO, count); }},
    {"flood-status", [](const Words& count) { floodStatus(count); }},
    {"flood-output", floodOutput},
    {"write-output", [](const Words& text) { writeOutput(unescaped(text)); }},
    {"write-output-file", [](const Words& path) { writeOutput(contentsOf(path)); }},
    {"say-arguments",
        [](const Words&) {
            for (int index = 1; index < toolArgumentCount; ++index)
                say("argument " + hexadecimal(toolArguments[index]));
        }},
    {"say-environment",
        [](const Words&) {
            for (char** variable = environ; *variable != nullptr; ++variable)
                say("variable " + hexadecimal(*variable));
        }},
    {"say-descriptors", [](const Words&) { sayDescriptors(); }},
    {"say-pid", [](const Words&) { say("pid " + std::to_string(::getpid())); }},
    {"say-session", [](const Words&) { say("session " + std::to_string(::getsid(0))); }},
    {"say-on-termination",
        [](const Words& text) {
            lastWords = text;
            std::signal(SIGTERM, sayLastWords);
        }},
    {"close", [](const Words& descriptor) { ::close(std::stoi(descriptor)); }},
    {"record", record},
    {"record-output",
        [](const Words& path) {
            std::ofstream(path, std::ios::binary | std::ios::app)
                << toolArguments[toolArgumentCount - 1] << '\n';
        }},
    {"record-folder", recordFolder},
    {"record-pid", [](const Words& path) { leaveFile(path, std::to_string(::getpid())); }},
    {"copy", [](const Words& path) { leaveFile(toolArguments[toolArgumentCount - 1], contentsOf(path)); }},
    {"touch", [](const Words& path) { leaveFile(path, ""); }},
    {"on-termination",
        [](const Words& path) {
            terminationFile = path;
            std::signal(SIGTERM, onTermination);
        }},
    {"ignore-termination", [](const Words&) { std::signal(SIGTERM, SIG_IGN); }},
    {"wait-for", waitForFile},
    {"wait-until-read", [](const Words&) { waitUntilRead(); }},
    {"sleep",
        [](const Words& count) { std::this_thread::sleep_for(std::chrono::milliseconds(std::stol(count))); }},
    {"hang", [](const Words&) { hang(); }},
    {"die",
        [](const Words& signal) {
            std::signal(std::stoi(signal), SIG_DFL); // a sanitizer may have installed a handler
            std::raise(std::stoi(signal));
        }},
    {"exit", [](const Words& status) { std::_Exit(std::stoi(status)); }},
};

bool hasArgument(const std::string& argument)
{
    return std::find(toolArguments + 1, toolArguments + toolArgumentCount, argument)
        != toolArguments + toolArgumentCount;
}

std::string firstWord(const std::string& line)
{
    return line.substr(0, line.find(' '));
}

std::string otherWords(const std::string& line)
{
    const auto blank = line.find(' ');
    return blank == std::string::npos ? std::string() : line.substr(blank + 1);
}

/// Returns false for an unknown command.
bool perform(const std::string& line)
{
    const std::string name = firstWord(line);
    const std::string words = otherWords(line);
    if (name == "with" || name == "without")
        return hasArgument(firstWord(words)) != (name == "with") || perform(otherWords(words));
    const auto command = commands.find(name);
    if (command == commands.end())
        return false;
    command->second(words);
    return true;
}

} // namespace

int main(int argc, char* argv[])
{
    toolArguments = argv;
    toolArgumentCount = argc;
    const std::string link = argv[0];
    if (!std::filesystem::exists(link + ".script") || !std::ifstream(link + ".script"))
        return 2;
    std::istringstream script(
        contentsOf(link + ".script")); // read at once: the commands run without an open script file
    for (std::string line; std::getline(script, line);) {
        if (!perform(line)) {
            std::cerr << "fakeTool: unknown command: " << line << '\n';
            return 2;
        }
    }
    return 0;
}
