// SPDX-License-Identifier: MIT
// Saves into a folder of the document portal, where only one name is visible to other programs. A preloaded
// library refuses the calls that the portal refuses (tests/faults/documentPortal.cpp).
#include "tools/DocumentPortal.h"

#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/tools/CreatorTest.h"
#include "tests/tools/MovieBytes.h"
#include "tests/tools/TestToken.h"
#include "tools/HiddenFiles.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

namespace fs = std::filesystem;

const std::string portal = TARNWELL_BUILD_FOLDER "/tests/libdocumentPortal.so";
const std::string failingCalls = TARNWELL_BUILD_FOLDER "/tests/libfailingCalls.so";
constexpr int mostCalls = 30;

std::string mountOf(const std::string& device, const std::string& type)
{
    return "64 63 " + device + " / /run/user/1000/doc rw,nosuid shared:5 - " + type
        + " portal rw,user_id=0\n";
}

} // namespace

/// The parameter tells whether the file system below the portal supports flags of renameat2.
class DocumentPortalTest : public CreatorTest, public testing::WithParamInterface<bool>
{
protected:
    ToolSetup setup(const Words& variables = {})
    {
        ToolSetup result;
        result.variables = {"LD_PRELOAD=" + failingCalls + ":" + portal, "TARNWELL_GRANTED=Rotated.mp4"};
        if (!GetParam()) {
            struct stat status = {};
            EXPECT_EQ(::stat(tools.videos().c_str(), &status), 0);
            const std::string device
                = std::to_string(major(status.st_dev)) + ":" + std::to_string(minor(status.st_dev));
            result.variables.push_back("TARNWELL_NO_RENAME_FLAGS=1");
            result.variables.push_back(
                "TARNWELL_MOUNTS=" + tools.addData("mounts", mountOf(device, "fuse.portal")));
        }
        result.variables.insert(result.variables.end(), variables.begin(), variables.end());
        return result;
    }

    /// Sends the signal at that call of creator while a good ffmpeg is used. Returns the exit status; -1 if
    /// creator ends without that call.
    int interrupt(const std::string& call, int signal)
    {
        const std::string goOn = tools.addData("go on", "");
        fs::remove(goOn);
        fs::remove(goOn + ".waiting");
        ToolProcess creator(
            tools.creator(), transcode(), setup({"TARNWELL_FAILS=" + call, "TARNWELL_WAITS_FOR=" + goOn}));
        EXPECT_TRUE(waitFor([&] { return exists(goOn + ".waiting") || !isRunning(creator.processId()); }));
        const bool isWaiting = exists(goOn + ".waiting");
        if (isWaiting)
            creator.signal(signal);
        if (signal != SIGKILL)
            writeFile(goOn, "");
        const int status = creator.wait();
        return isWaiting ? status : -1;
    }

    /// Calls `check` with the exit status after a signal at each call of each function.
    template <typename Check>
    void interruptEachCall(int signal, Check check)
    {
        for (const std::string call : {"fsync", "renameat2", "renameat", "unlinkat", "fstatat", "openat"}) {
            int time = 0;
            for (int status = 0; status >= 0 && time < mostCalls;) {
                SCOPED_TRACE(call + " " + std::to_string(++time));
                writeFile(output(), "older");
                status = interrupt(call + " " + std::to_string(time), signal);
                check(status);
                for (const auto& name : otherNames())
                    fs::remove(tools.at(name));
            }
            EXPECT_LT(time, mostCalls) << call;
            EXPECT_TRUE(time > 1 || call == "unlinkat") << call << " is never called";
        }
    }

    void expectOnly(const std::string& bytes)
    {
        EXPECT_EQ(otherNames(), Words({"Rotated.mp4"}));
        EXPECT_TRUE(contentsOf(output()) == bytes) << contentsOf(output()).size() << " bytes";
    }
};

TEST_P(DocumentPortalTest, aNewFileIsWhole)
{
    setGoodFfmpeg();
    EXPECT_EQ(run(transcode(), setup()), 0) << lastRun().errorText();
    expectOnly(movie());
}

TEST_P(DocumentPortalTest, anOlderFileIsReplacedUnderItsName)
{
    setGoodFfmpeg();
    writeFile(output(), "older");
    EXPECT_EQ(run(transcode(), setup()), 0) << lastRun().errorText();
    expectOnly(movie());
    setInput(movieOf(2 << 20)); // for a byte copy
    EXPECT_EQ(run(fixFlag(), setup()), 0) << lastRun().errorText();
    EXPECT_EQ(otherNames(), Words({"Rotated.mp4"}));
    EXPECT_EQ(contentsOf(output()).size(), contentsOf(input()).size());
}

TEST_P(DocumentPortalTest, aFailureLeavesTheOlderFileUnderItsName)
{
    tools.setFfmpeg("write-output half\nexit 1\n");
    writeFile(output(), "older");
    EXPECT_EQ(run(transcode(), setup()), 1);
    EXPECT_EQ(lastRun().errorText().find("could not be renamed"), std::string::npos);
    expectOnly("older");
}

TEST_P(DocumentPortalTest, aCancelDuringAnEncodingLeavesTheOlderFileUnderItsName)
{
    tools.setFfmpeg("write-output half\nerror ready\\n\nhang\n");
    writeFile(output(), "older");
    ToolProcess creator(tools.creator(), transcode(), setup());
    creator.waitForError("ready");
    creator.signal(SIGTERM);
    EXPECT_EQ(creator.wait(), cancelled);
    expectOnly("older");
}

TEST_P(DocumentPortalTest, aCancelBeforeTheRenameLeavesTheOlderFileUnderItsName)
{
    setGoodFfmpeg();
    writeFile(output(), "older");
    for (const std::string call : {"fsync 1", "renameat2 1"}) { // renameat2: the attempt to put it aside
        EXPECT_EQ(interrupt(call, SIGTERM), cancelled) << call;
        expectOnly("older");
    }
}

TEST_P(DocumentPortalTest, aCancelDuringTheRenameIsTooLate)
{
    setGoodFfmpeg();
    writeFile(output(), "older");
    EXPECT_EQ(interrupt("renameat 1", SIGTERM), 0);
    expectOnly(movie());
}

TEST_P(DocumentPortalTest, aTokenThatTheApplicationHasTakenPreventsTheRename)
{
    setGoodFfmpeg();
    writeFile(output(), "older");
    const TestToken token;
    EXPECT_EQ(run(transcode(), setup({token.variable()})), 0);
    EXPECT_FALSE(token.take());
    writeFile(output(), "older");
    EXPECT_EQ(run(transcode(), setup({token.variable()})), cancelled);
    expectOnly("older");
}

TEST_P(DocumentPortalTest, aCancelAtAnyCallLeavesTheOlderFileOrTheNewOne)
{
    setGoodFfmpeg();
    interruptEachCall(SIGTERM, [this](int status) {
        EXPECT_TRUE(status == cancelled || status == 0 || status == -1) << status;
        expectOnly(status == cancelled ? "older" : movie());
    });
}

TEST_P(DocumentPortalTest, aKillAtAnyCallLeavesOneHiddenFileAtMost)
{
    setGoodFfmpeg();
    interruptEachCall(SIGKILL, [this](int) {
        const std::string now = contentsOf(output());
        EXPECT_TRUE(now == "older" || now == movie()) << now.size();
        const Words names = otherNames();
        EXPECT_LE(names.size(), 2U);
        EXPECT_TRUE(std::all_of(names.begin(), names.end(),
            [](const auto& name) { return name == "Rotated.mp4" || isHiddenName(name); }));
    });
}

TEST_P(DocumentPortalTest, theHiddenFileOfAKilledRunIsDeletedAfterADay)
{
    setGoodFfmpeg();
    EXPECT_EQ(interrupt("fsync 1", SIGKILL), 128 + SIGKILL);
    const Words names = otherNames();
    ASSERT_EQ(names.size(), 1U);
    EXPECT_EQ(run(transcode(), setup()), 0);
    EXPECT_TRUE(exists(tools.at(names[0])));
    fs::last_write_time(tools.at(names[0]), fs::file_time_type::clock::now() - std::chrono::hours(25));
    EXPECT_EQ(run(transcode(), setup()), 0);
    expectOnly(movie());
}

TEST_P(DocumentPortalTest, theOriginalIsNotReplacedThroughAnotherGrant)
{
    // A file that is granted twice has two inode numbers, like this copy.
    setGoodFfmpeg();
    fs::copy(input(), output());
    fs::last_write_time(output(), fs::last_write_time(input()));
    for (const auto& arguments : {transcode(), fixFlag()}) {
        EXPECT_EQ(run(arguments, setup()), 1);
        expectError("tarnwell: the original at the output's path could not be renamed");
        expectOnly(contentsOf(input()));
    }
}

INSTANTIATE_TEST_SUITE_P(RenameFlags, DocumentPortalTest, testing::Bool(),
    [](const auto& row) { return row.param ? "supported" : "refused"; });

TEST(PortalMountTest, isFoundByDeviceAndType)
{
    const std::string mounts = "22 1 8:1 / / rw - ext4 /dev/sda1 rw\n" + mountOf("0:40", "fuse.portal")
        + mountOf("0:41", "fuse.gvfsd-fuse");
    EXPECT_TRUE(isDocumentPortal(mounts, makedev(0, 40)));
    EXPECT_FALSE(isDocumentPortal(mounts, makedev(0, 41)));
    EXPECT_FALSE(isDocumentPortal(mounts, makedev(8, 1)));
    EXPECT_FALSE(isDocumentPortal(mounts, makedev(0, 4)));
    EXPECT_FALSE(isDocumentPortal("", makedev(0, 40)));
}

} // namespace tarnwell::test
