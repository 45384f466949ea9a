// SPDX-License-Identifier: MIT
#include "platform/DispatchQueue.h"

#include <gtest/gtest.h>

#include <future>
#include <thread>
#include <vector>

namespace tarnwell::test
{

/// Counts the calls of `wake`; the tests call drain.
class DispatchQueueTest : public testing::Test
{
protected:
    /// Returns work that appends `number` to m_notes.
    DispatchQueue::Work note(int number)
    {
        return [this, number] { m_notes.push_back(number); };
    }

    int m_wakes = 0;
    std::vector<int> m_notes;
    DispatchQueue m_queue{[this] { ++m_wakes; }};
};

TEST_F(DispatchQueueTest, workIsDoneInTheOrderOfItsSubmission)
{
    for (const int number : {3, 1, 2})
        m_queue.async(note(number));
    m_queue.drain();
    EXPECT_EQ(m_notes, (std::vector<int>{3, 1, 2}));
}

TEST_F(DispatchQueueTest, nothingIsDoneBeforeTheDrain)
{
    m_queue.async(note(1));
    EXPECT_TRUE(m_notes.empty());
}

TEST_F(DispatchQueueTest, workRunsOnce)
{
    m_queue.async(note(1));
    m_queue.drain();
    m_queue.drain();
    EXPECT_EQ(m_notes, std::vector<int>{1});
}

TEST_F(DispatchQueueTest, drainingAnEmptyQueueDoesNothing)
{
    m_queue.drain();
    EXPECT_EQ(m_wakes, 0);
    EXPECT_TRUE(m_notes.empty());
}

TEST_F(DispatchQueueTest, onlyWorkThatComesToAnEmptyQueueWakes)
{
    m_queue.async(note(1));
    m_queue.async(note(2));
    EXPECT_EQ(m_wakes, 1);
    m_queue.drain();
    EXPECT_EQ(m_wakes, 1);
    m_queue.async(note(3));
    EXPECT_EQ(m_wakes, 2);
}

TEST_F(DispatchQueueTest, workOfEveryThreadIsDoneOnceAndInThatThreadsOrder)
{
    constexpr int perThread = 500;
    constexpr int threadCount = 4;
    {
        std::vector<std::jthread> submitters;
        for (int thread = 0; thread < threadCount; ++thread) {
            submitters.emplace_back([this, thread] {
                for (int index = 0; index < perThread; ++index)
                    m_queue.async(note(thread * perThread + index));
            });
        }
    }
    m_queue.drain();
    std::vector<int> next;
    for (int thread = 0; thread < threadCount; ++thread)
        next.push_back(thread * perThread);
    ASSERT_EQ(m_notes.size(), static_cast<std::size_t>(threadCount) * perThread);
    for (const int number : m_notes)
        EXPECT_EQ(number, next[static_cast<std::size_t>(number / perThread)]++);
    EXPECT_EQ(m_wakes, 1);
}

TEST_F(DispatchQueueTest, workIsDoneOnTheDrainingThread)
{
    std::thread::id worker;
    std::jthread([this, &worker] {
        m_queue.async([&worker] { worker = std::this_thread::get_id(); });
    }).join();
    m_queue.drain();
    EXPECT_EQ(worker, std::this_thread::get_id());
}

TEST_F(DispatchQueueTest, noWorkStartsDuringANestedEventLoop)
{
    m_queue.async([this] {
        m_queue.drain(); // as a nested event loop does
        m_notes.push_back(1);
    });
    m_queue.async(note(2));
    m_queue.drain();
    EXPECT_EQ(m_notes, (std::vector<int>{1, 2}));
}

TEST_F(DispatchQueueTest, workSubmittedDuringADrainWaitsForTheNextOne)
{
    m_queue.async([this] {
        m_notes.push_back(1);
        m_queue.async(note(3));
    });
    m_queue.async(note(2));
    m_queue.drain();
    EXPECT_EQ(m_notes, (std::vector<int>{1, 2}));
    m_queue.drain();
    EXPECT_EQ(m_notes, (std::vector<int>{1, 2, 3}));
}

TEST_F(DispatchQueueTest, workLeftForTheNextDrainWakesAgain)
{
    m_queue.async([this] { m_queue.async(note(3)); });
    m_queue.async(note(2));
    m_queue.drain();
    EXPECT_GE(m_wakes, 2);
}

TEST_F(DispatchQueueTest, closingDropsWhatIsLeft)
{
    m_queue.async(note(1));
    m_queue.close();
    m_queue.drain();
    EXPECT_TRUE(m_notes.empty());
}

TEST_F(DispatchQueueTest, workAfterClosingIsDroppedAndDoesNotWake)
{
    m_queue.close();
    m_queue.async(note(1));
    m_queue.drain();
    EXPECT_EQ(m_wakes, 0);
    EXPECT_TRUE(m_notes.empty());
}

TEST_F(DispatchQueueTest, workThatClosesTheQueueIsTheLast)
{
    m_queue.async([this] {
        m_queue.close();
        m_notes.push_back(1);
    });
    m_queue.async(note(2));
    m_queue.drain();
    EXPECT_EQ(m_notes, std::vector<int>{1});
    EXPECT_EQ(m_wakes, 1);
}

TEST_F(DispatchQueueTest, droppedWorkIsDestroyedAtTheClosing)
{
    const auto held = std::make_shared<int>(1);
    m_queue.async([held] {});
    EXPECT_EQ(held.use_count(), 2);
    m_queue.close();
    EXPECT_EQ(held.use_count(), 1);
}

TEST(AsyncUserInitiatedTest, theWorkRunsOnAThreadOfItsOwn)
{
    std::promise<std::thread::id> worker;
    asyncUserInitiated([&worker] { worker.set_value_at_thread_exit(std::this_thread::get_id()); });
    EXPECT_NE(worker.get_future().get(), std::this_thread::get_id());
}

TEST(AsyncUserInitiatedTest, theCallerDoesNotWaitForTheWork)
{
    std::promise<void> go;
    std::promise<void> done;
    asyncUserInitiated([&go, &done] {
        go.get_future().wait();
        done.set_value_at_thread_exit();
    });
    go.set_value(); // the work waits for this
    done.get_future().wait();
}

} // namespace tarnwell::test
