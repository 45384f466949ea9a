// SPDX-License-Identifier: MIT
// The token by which the application and creator agree whether a save is cancelled.
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/tools/CreatorTest.h"
#include "tests/tools/TestToken.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace tarnwell::test
{

class CommitTest : public CreatorTest
{
protected:
    void SetUp() override
    {
        CreatorTest::SetUp();
        setGoodFfmpeg();
    }

    int save() { return run(transcode(), {.variables = {token.variable()}}); }

    TestToken token;
};

TEST_F(CommitTest, creatorTakesTheTokenBeforeItReplacesAFile)
{
    writeFile(output(), "older");
    EXPECT_EQ(save(), 0);
    EXPECT_EQ(contentsOf(output()), movie());
    EXPECT_FALSE(token.take());
}

TEST_F(CommitTest, aTakenTokenCancelsTheReplacementOfAFile)
{
    const TestToken taken(true);
    for (const auto& refused : {std::vector<RefusedCall>(), {RefusedCall::OpenNameless}}) {
        writeFile(output(), "older");
        const auto time = std::filesystem::last_write_time(output());
        EXPECT_EQ(run(transcode(), {.variables = {taken.variable()}, .refused = refused}), cancelled);
        EXPECT_EQ(std::filesystem::last_write_time(output()), time);
        expectOnlyOlderFile();
    }
}

TEST_F(CommitTest, theTokenStaysWithTheCallerIfThereIsNoOlderFile)
{
    EXPECT_EQ(save(), 0);
    EXPECT_TRUE(token.take());
}

TEST_F(CommitTest, aSignalAfterTheTokenIsTakenChangesNothing)
{
    writeFile(output(), "older");
    const std::string goOn = tools.addData("go on", "");
    std::filesystem::remove(goOn);
    ToolProcess creator(tools.creator(), transcode(),
        {.variables = {"LD_PRELOAD=" TARNWELL_BUILD_FOLDER "/tests/libfailingCalls.so",
             "TARNWELL_FAILS=unlinkat 1", "TARNWELL_WAITS_FOR=" + goOn, token.variable()}});
    ASSERT_TRUE(waitForFile(goOn + ".waiting"));
    EXPECT_FALSE(token.take());
    creator.signal(SIGTERM);
    writeFile(goOn, "");
    EXPECT_EQ(creator.wait(), 0);
    EXPECT_EQ(contentsOf(output()), movie());
    EXPECT_EQ(otherNames(), Words({"Rotated.mp4"}));
}

TEST_F(CommitTest, aVariableWithoutATokenIsIgnored)
{
    const int other = ::open("/dev/zero", O_RDONLY);
    for (const std::string& number : {std::to_string(other), std::string("999"), std::string("text")}) {
        writeFile(output(), "older");
        EXPECT_EQ(run(transcode(), {.variables = {"TARNWELL_COMMIT_TOKEN=" + number}}), 0) << number;
        EXPECT_EQ(contentsOf(output()), movie());
    }
    ::close(other);
}

} // namespace tarnwell::test
