// SPDX-License-Identifier: MIT
#include "platform/StandardStreams.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

bool isNullDevice(int descriptor)
{
    struct stat status = {};
    struct stat null = {};
    return ::fstat(descriptor, &status) == 0 && ::stat("/dev/null", &null) == 0
        && status.st_rdev == null.st_rdev && S_ISCHR(status.st_mode);
}

int nextFreeDescriptor()
{
    const int descriptor = ::open("/", O_RDONLY | O_CLOEXEC);
    ::close(descriptor);
    return descriptor;
}

bool aWriteWithoutAReaderIsAnError()
{
    std::array<int, 2> ends{};
    const bool made = ::pipe(ends.data()) == 0;
    ::close(ends[0]);
    return made && ::write(ends[1], "x", 1) == -1 && errno == EPIPE;
}

/// Ends the child of a death test with status 0 if `held`.
[[noreturn]] void leave(bool held)
{
    std::_Exit(held ? 0 : 1);
}

void closeAndPrepare(const std::vector<int>& descriptors)
{
    for (const int descriptor : descriptors)
        ::close(descriptor);
    prepareStandardStreams();
}

} // namespace

struct ClosedCase {
    std::string name;
    std::vector<int> descriptors;
};

class StandardStreamsDeathTest : public testing::TestWithParam<ClosedCase>
{
};

TEST_P(StandardStreamsDeathTest, closedDescriptorsAreOpenedOnTheNullDevice)
{
    const int free = nextFreeDescriptor();
    const auto& closed = GetParam().descriptors;
    EXPECT_EXIT(
        {
            closeAndPrepare(closed);
            bool held = nextFreeDescriptor() == free; // no other descriptor is open
            for (const int descriptor : closed)
                held = held && isNullDevice(descriptor);
            leave(held);
        },
        testing::ExitedWithCode(0), "^$");
}

INSTANTIATE_TEST_SUITE_P(Closed, StandardStreamsDeathTest,
    testing::Values(ClosedCase{"input", {0}}, ClosedCase{"output", {1}}, ClosedCase{"error", {2}},
        ClosedCase{"inputAndError", {0, 2}}, ClosedCase{"all", {0, 1, 2}}),
    [](const auto& row) { return row.param.name; });

TEST(OpenStandardStreamsDeathTest, openDescriptorsStayWhatTheyAre)
{
    const auto targets = [] {
        std::vector<std::string> links;
        for (const auto* descriptor : {"/proc/self/fd/0", "/proc/self/fd/1", "/proc/self/fd/2"})
            links.push_back(std::filesystem::read_symlink(descriptor).string());
        return links;
    };
    EXPECT_EXIT(
        {
            const auto before = targets();
            const int free = nextFreeDescriptor();
            prepareStandardStreams();
            leave(targets() == before && nextFreeDescriptor() == free);
        },
        testing::ExitedWithCode(0), "^$");
}

// With SIGCHLD ignored, the kernel reaps children itself and reuses their numbers.
TEST(OpenStandardStreamsDeathTest, childrenStayUntilTheyAreReapedWhereTheStarterIgnoredSigchld)
{
    EXPECT_EXIT(
        {
            std::signal(SIGCHLD, SIG_IGN);
            prepareStandardStreams();
            const pid_t child = ::fork();
            if (child == 0)
                std::_Exit(7);
            int status = 0;
            leave(::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 7);
        },
        testing::ExitedWithCode(0), "^$");
}

TEST(OpenStandardStreamsDeathTest, aReaderThatGoesAwayDoesNotKillTheWriter)
{
    EXPECT_EXIT(
        {
            std::signal(SIGPIPE, SIG_DFL);
            prepareStandardStreams();
            leave(aWriteWithoutAReaderIsAnError());
        },
        testing::ExitedWithCode(0), "^$");
}

} // namespace tarnwell::test
