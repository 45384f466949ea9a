// SPDX-License-Identifier: MIT
#include "platform/FileHandle.h"

#include "tests/support/TimeLimit.h"

#include <gtest/gtest.h>

#include <array>
#include <fcntl.h>
#include <future>
#include <mutex>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace tarnwell::test
{

void writeTo(const Pipe& pipe, const std::string& bytes)
{
    for (std::size_t done = 0; done < bytes.size();) {
        const auto count = ::write(pipe.writingDescriptor(), bytes.data() + done, bytes.size() - done);
        ASSERT_GT(count, 0);
        done += static_cast<std::size_t>(count);
    }
}

/// During its lifetime the process can open no descriptor.
class NoMoreDescriptors
{
public:
    NoMoreDescriptors()
    {
        ::getrlimit(RLIMIT_NOFILE, &m_before);
        rlimit none = m_before;
        none.rlim_cur = 0;
        ::setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoMoreDescriptors() { ::setrlimit(RLIMIT_NOFILE, &m_before); }
    NoMoreDescriptors(const NoMoreDescriptors&) = delete;
    NoMoreDescriptors& operator=(const NoMoreDescriptors&) = delete;

private:
    rlimit m_before = {};
};

TEST(PipeTest, bytesComeOutAtTheOtherEnd)
{
    Pipe pipe;
    writeTo(pipe, std::string("a\0b\xFF", 4));
    EXPECT_EQ(pipe.fileHandleForReading()->availableData(), std::string("a\0b\xFF", 4));
}

TEST(PipeTest, bothEndsAreClosedInAProgramThatIsStarted)
{
    const Pipe pipe;
    EXPECT_EQ(::fcntl(pipe.writingDescriptor(), F_GETFD), FD_CLOEXEC);
}

TEST(PipeTest, theWritingEndIsGoneAfterItsClosing)
{
    Pipe pipe;
    const int descriptor = pipe.writingDescriptor();
    pipe.closeWriting();
    EXPECT_EQ(pipe.writingDescriptor(), -1);
    EXPECT_EQ(::fcntl(descriptor, F_GETFD), -1);
}

TEST(PipeTest, closingTheWritingEndTwiceIsHarmless)
{
    Pipe pipe;
    pipe.closeWriting();
    const Pipe other; // reuses the descriptor
    pipe.closeWriting();
    EXPECT_NE(::fcntl(other.writingDescriptor(), F_GETFD), -1);
}

TEST(PipeTest, theReadingEndLivesOnWithoutThePipe)
{
    std::shared_ptr<FileHandle> reading;
    {
        const Pipe pipe;
        reading = pipe.fileHandleForReading();
        writeTo(pipe, "left behind");
    }
    EXPECT_EQ(reading->readDataToEndOfFile(), "left behind");
}

TEST(PipeTest, bothEndsAreClosedInTheEnd)
{
    std::array<int, 2> before{};
    ASSERT_EQ(::pipe(before.data()), 0);
    ::close(before[0]);
    ::close(before[1]);
    {
        const Pipe pipe;
        writeTo(pipe, "x");
    }
    std::array<int, 2> after{};
    ASSERT_EQ(::pipe(after.data()), 0);
    EXPECT_EQ(before, after);
    ::close(after[0]);
    ::close(after[1]);
}

TEST(PipeTest, whereTheSystemHasNoneToGiveThereIsNoWritingEndAndNothingToRead)
{
    // The undefined behaviour sanitizer opens a pipe when it first checks a type.
    Pipe earlier;
    earlier.fileHandleForReading();
    const NoMoreDescriptors exhausted;
    const Pipe pipe;
    EXPECT_EQ(pipe.writingDescriptor(), -1);
    EXPECT_EQ(pipe.fileHandleForReading()->availableData(), "");
}

TEST(FileHandleTest, availableDataGivesWhatIsThereAndNoMore)
{
    Pipe pipe;
    writeTo(pipe, "first");
    EXPECT_EQ(pipe.fileHandleForReading()->availableData(), "first");
    writeTo(pipe, "second");
    writeTo(pipe, " and third");
    EXPECT_EQ(pipe.fileHandleForReading()->availableData(), "second and third");
}

TEST(FileHandleTest, availableDataWaitsForTheFirstByte)
{
    Pipe pipe;
    auto data = std::async(std::launch::async, [&] { return pipe.fileHandleForReading()->availableData(); });
    writeTo(pipe, "late");
    EXPECT_EQ(data.get(), "late");
}

TEST(FileHandleTest, availableDataIsEmptyAtTheEnd)
{
    Pipe pipe;
    writeTo(pipe, "last");
    pipe.closeWriting();
    EXPECT_EQ(pipe.fileHandleForReading()->availableData(), "last");
    EXPECT_EQ(pipe.fileHandleForReading()->availableData(), "");
    EXPECT_EQ(pipe.fileHandleForReading()->availableData(), "");
}

TEST(FileHandleTest, aHandleWithoutADescriptorIsAtItsEnd)
{
    const auto handle = std::make_shared<FileHandle>(-1);
    EXPECT_EQ(handle->availableData(), "");
    EXPECT_EQ(handle->readDataToEndOfFile(), "");
}

TEST(FileHandleTest, readingToTheEndGivesMoreThanAPipeHolds)
{
    const std::string all(1 << 20, 'x');
    Pipe pipe;
    const std::jthread writer([&] {
        writeTo(pipe, all);
        pipe.closeWriting();
    });
    EXPECT_EQ(pipe.fileHandleForReading()->readDataToEndOfFile(), all);
}

/// Collects the chunks that a readability handler reads. An empty chunk is the end of file.
class ReadabilityHandlerTest : public testing::Test
{
protected:
    void listen()
    {
        m_pipe->fileHandleForReading()->setReadabilityHandler([this](FileHandle& handle) {
            const std::string chunk = handle.availableData();
            const std::lock_guard lock(m_mutex);
            m_thread = std::this_thread::get_id();
            m_ends += chunk.empty() ? 1 : 0;
            m_data += chunk;
            m_changed.notify_one();
        });
    }

    /// Waits until at least `count` bytes have arrived and returns all of them. Fails after the longest wait.
    std::string dataOf(std::size_t count)
    {
        std::unique_lock lock(m_mutex);
        EXPECT_TRUE(m_changed.wait_for(lock, longestWait, [&] { return m_data.size() >= count; }))
            << "only " << m_data.size() << " of " << count << " bytes have arrived";
        return m_data;
    }

    int ends()
    {
        const std::lock_guard lock(m_mutex);
        return m_ends;
    }

    /// Destroys the pipe and waits until the handler's thread has ended.
    void finish()
    {
        const std::weak_ptr<FileHandle> handle = m_pipe->fileHandleForReading();
        m_pipe.reset();
        waitForTheEndOf(handle);
    }

    /// The handler's thread owns the handle until it ends.
    static void waitForTheEndOf(const std::weak_ptr<FileHandle>& handle)
    {
        while (!handle.expired())
            std::this_thread::yield();
    }

    std::unique_ptr<Pipe> m_pipe = std::make_unique<Pipe>();
    std::thread::id m_thread;

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string m_data;
    int m_ends = 0;
};

TEST_F(ReadabilityHandlerTest, isCalledWithTheDataInOrderAndOnceAtTheEnd)
{
    listen();
    std::string sent;
    for (int number = 0; number < 20000; ++number) {
        const std::string text = std::to_string(number) + "\r";
        writeTo(*m_pipe, text);
        sent += text;
    }
    finish();
    EXPECT_EQ(dataOf(0), sent);
    EXPECT_EQ(ends(), 1);
}

TEST_F(ReadabilityHandlerTest, isCalledOnAnotherThreadWhileTheWriterIsStillThere)
{
    listen();
    writeTo(*m_pipe, "status");
    EXPECT_EQ(dataOf(6), "status");
    EXPECT_EQ(ends(), 0);
    writeTo(*m_pipe, " and more");
    EXPECT_EQ(dataOf(15), "status and more");
    finish();
    EXPECT_EQ(ends(), 1);
    EXPECT_NE(m_thread, std::this_thread::get_id());
}

TEST_F(ReadabilityHandlerTest, keepsTheHandleAliveUntilTheWriterHasClosed)
{
    listen();
    const std::weak_ptr<FileHandle> handle = m_pipe->fileHandleForReading();
    const int writing = ::dup(m_pipe->writingDescriptor());
    m_pipe.reset();
    EXPECT_FALSE(handle.expired());
    EXPECT_EQ(::write(writing, "late", 4), 4);
    EXPECT_EQ(dataOf(4), "late");
    ::close(writing);
    waitForTheEndOf(handle);
    EXPECT_EQ(ends(), 1);
}

} // namespace tarnwell::test
