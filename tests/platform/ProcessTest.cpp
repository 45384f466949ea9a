// SPDX-License-Identifier: MIT
#include "tests/platform/ProcessTestSetup.h"
#include "tests/support/Files.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace tarnwell::test
{

class ProcessTest : public ProcessTestSetup
{
protected:
    std::string run(const std::string& script)
    {
        setScript(script);
        launch();
        std::string text = printed();
        m_process->waitUntilExit();
        return text;
    }

    /// The set of signals that the child has in this line of /proc/self/status, in hexadecimal.
    std::string signalSet(const std::string& name)
    {
        m_process->setExecutable("/bin/grep");
        m_process->setArguments(
            {"--only-matching", "--perl-regexp", name + ":\\t\\K.*", "/proc/self/status"});
        launch();
        std::string text = printed();
        m_process->waitUntilExit();
        return text;
    }

    struct Family {
        pid_t parent = 0;
        pid_t group = 0;
        pid_t session = 0;
    };

    /// Of a child that is launched as the process stands.
    Family family()
    {
        std::istringstream fields(run("print-file /proc/self/stat"));
        std::string number;
        std::string name;
        std::string state;
        Family family;
        fields >> number >> name >> state >> family.parent >> family.group >> family.session;
        return family;
    }
};

TEST_F(ProcessTest, argumentsArriveInOrderAndUnchanged)
{
    const std::vector<std::string> arguments = {"-i", "", "a b", "'\"$HOME`ls`;\\", "line\nfeed", "50%", "-y",
        "/caf\xC3\xA9/\xFF\xFE.mp4", std::string(100000, 'x')};
    m_process->setArguments(arguments);
    run("record " + path("arguments"));
    EXPECT_EQ(recordedArguments(path("arguments")), arguments);
}

TEST_F(ProcessTest, aProgramMayHaveNoArguments)
{
    run("record " + path("arguments"));
    EXPECT_TRUE(exists(path("arguments")));
    EXPECT_TRUE(recordedArguments(path("arguments")).empty());
}

TEST_F(ProcessTest, eachStreamHasItsOwnPipe)
{
    const auto errors = std::make_shared<Pipe>();
    m_process->setStandardError(errors);
    EXPECT_EQ(run("print to output\nerror to error"), "to output");
    EXPECT_EQ(errors->fileHandleForReading()->readDataToEndOfFile(), "to error");
}

TEST_F(ProcessTest, streamsWithoutAPipeAreTheApplicationsOwn)
{
    m_process->setStandardOutput(nullptr);
    m_output->closeWriting();
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    run("print to output\nerror to error");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "to output");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "to error");
}

TEST_F(ProcessTest, theLaunchGivesTheWritingEndsAway)
{
    const auto errors = std::make_shared<Pipe>();
    m_process->setStandardError(errors);
    run("exit 0");
    EXPECT_EQ(m_output->writingDescriptor(), -1);
    EXPECT_EQ(errors->writingDescriptor(), -1);
}

TEST_F(ProcessTest, destroyingItDoesNotEndTheChild)
{
    setScript("print ready\nwait-for " + path("go") + "\nprint  and still there");
    launch();
    EXPECT_EQ(nextPrinted(), "ready");
    m_process.reset();
    writeFile(path("go"), "");
    EXPECT_EQ(printed(), " and still there");
}

TEST_F(ProcessTest, aChildCanHaveASessionOfItsOwn)
{
    m_process->setSession(Process::Session::Own);
    const Family child = family();
    EXPECT_EQ(child.parent, ::getpid());
    EXPECT_NE(child.session, ::getsid(0));
    EXPECT_EQ(child.group, child.session);
}

TEST_F(ProcessTest, aChildSharesSessionAndGroupByDefault)
{
    const Family child = family();
    EXPECT_EQ(child.session, ::getsid(0));
    EXPECT_EQ(child.group, ::getpgrp());
}

TEST_F(ProcessTest, theChildBlocksNoSignalThatItsParentBlocks)
{
    sigset_t blocked;
    sigset_t before;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGTERM);
    ::sigaddset(&blocked, SIGUSR1);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const std::string mask = signalSet("SigBlk");
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(mask, "0000000000000000\n");
}

TEST_F(ProcessTest, theChildDoesNotIgnoreSigtermThoughItsParentDoes)
{
    constexpr unsigned long long termination = 1ULL << (SIGTERM - 1);
    constexpr unsigned long long brokenPipe = 1ULL << (SIGPIPE - 1);
    const auto terminationBefore = std::signal(SIGTERM, SIG_IGN);
    const auto brokenPipeBefore = std::signal(SIGPIPE, SIG_IGN);
    const auto ignored = std::stoull(signalSet("SigIgn"), nullptr, 16);
    std::signal(SIGTERM, terminationBefore);
    std::signal(SIGPIPE, brokenPipeBefore);
    EXPECT_EQ(ignored & termination, 0U);
    EXPECT_EQ(ignored & brokenPipe, brokenPipe);
}

TEST_F(ProcessTest, theChildHoldsNoEndOfAPipeButItsOwnStream)
{
    const Pipe other;
    struct stat ours = {};
    ASSERT_EQ(::fstat(m_output->writingDescriptor(), &ours), 0);
    struct stat others = {};
    ASSERT_EQ(::fstat(other.writingDescriptor(), &others), 0);
    setScript("record-pid " + path("pid") + "\nprint ready\nwait-for " + path("go"));
    launch();
    EXPECT_EQ(nextPrinted(), "ready");
    std::vector<std::string> holders;
    const std::string descriptors = "/proc/" + contentsOf(path("pid")) + "/fd/";
    for (const auto& name : namesIn(descriptors)) {
        struct stat status = {};
        ASSERT_EQ(::stat((descriptors + name).c_str(), &status), 0);
        if (status.st_ino == ours.st_ino)
            holders.push_back(name);
        EXPECT_FALSE(status.st_ino == others.st_ino && status.st_dev == others.st_dev) << name;
    }
    EXPECT_EQ(holders, std::vector<std::string>{"1"});
    writeFile(path("go"), "");
    m_process->waitUntilExit();
}

TEST_F(ProcessTest, aPassedDescriptorIsOpenInTheChildUnderTheNumberInTheVariable)
{
    writeFile(path("passed"), "");
    const int file = ::open(path("passed").c_str(), O_RDONLY | O_CLOEXEC);
    ::setenv("TARNWELL_TEST_PASSED", "of an outer process", 1);
    m_process->passDescriptor("TARNWELL_TEST_PASSED", file);
    const std::string number = std::to_string(file);
    m_process->setExecutable("/bin/sh");
    m_process->setArguments({"-c", "readlink /proc/self/fd/" + number + "; env | grep PASSED="});
    launch();
    EXPECT_EQ(printed(), path("passed") + "\nTARNWELL_TEST_PASSED=" + number + "\n");
    m_process->waitUntilExit();
    ::unsetenv("TARNWELL_TEST_PASSED");
    ::close(file);
}

TEST_F(ProcessTest, aMissingDescriptorIsNotPassed)
{
    ::setenv("TARNWELL_TEST_PASSED", "of an outer process", 1);
    m_process->passDescriptor("TARNWELL_TEST_PASSED", -1);
    EXPECT_EQ(run("print-file /proc/self/environ").find("TARNWELL_TEST_PASSED"), std::string::npos);
    ::unsetenv("TARNWELL_TEST_PASSED");
}

TEST_F(ProcessTest, theChildWorksInTheSameFolderAndEnvironment)
{
    ::setenv("TARNWELL_TEST_VALUE", "inherited", 1);
    const std::string environment = run("print-file /proc/self/environ");
    ::unsetenv("TARNWELL_TEST_VALUE");
    EXPECT_NE(environment.find("TARNWELL_TEST_VALUE=inherited"), std::string::npos);
}

} // namespace tarnwell::test
