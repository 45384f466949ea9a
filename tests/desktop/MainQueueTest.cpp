// SPDX-License-Identifier: MIT
#include "desktop/MainQueue.h"

#include "tests/support/WindowTest.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace tarnwell::test
{

TEST(MainQueueTest, workFromAnotherThreadRunsOnTheMainThreadInItsOrder)
{
    constexpr int count = 1000;
    const MainQueue mainQueue;
    std::vector<int> done;
    std::vector<std::thread::id> threads;
    std::thread submitter([&, queue = mainQueue.queue()] {
        for (int i = 0; i < count; ++i) {
            queue->async([&, i] {
                done.push_back(i);
                threads.push_back(std::this_thread::get_id());
            });
        }
    });
    EXPECT_TRUE(waitUntil([&] { return done.size() == count; }));
    submitter.join();
    for (int i = 0; i < count; ++i)
        EXPECT_EQ(done[static_cast<std::size_t>(i)], i);
    EXPECT_EQ(threads, std::vector(count, std::this_thread::get_id()));
}

TEST(MainQueueTest, everyThreadsWorkKeepsItsOrder)
{
    constexpr int threadCount = 4;
    constexpr int count = 250;
    const MainQueue mainQueue;
    std::vector<std::vector<int>> done(threadCount);
    std::vector<std::thread> submitters;
    for (std::size_t thread = 0; thread < threadCount; ++thread) {
        submitters.emplace_back([&, thread, queue = mainQueue.queue()] {
            for (int i = 0; i < count; ++i)
                queue->async([&, thread, i] { done[thread].push_back(i); });
        });
    }
    for (const auto& order : done)
        EXPECT_TRUE(waitUntil([&] { return order.size() == count; }));
    for (auto& submitter : submitters)
        submitter.join();
    for (const auto& order : done)
        EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(MainQueueTest, workOfTheMainThreadItselfWaitsForItsTurn)
{
    const MainQueue mainQueue;
    bool isDone = false;
    mainQueue.queue()->async([&] { isDone = true; });
    EXPECT_FALSE(isDone);
    EXPECT_TRUE(waitUntil([&] { return isDone; }));
}

TEST(MainQueueTest, workMaySubmitWork)
{
    const MainQueue mainQueue;
    std::vector<int> done;
    mainQueue.queue()->async([&] {
        mainQueue.queue()->async([&] { done.push_back(2); });
        done.push_back(1);
    });
    EXPECT_TRUE(waitUntil([&] { return done.size() == 2; }));
    EXPECT_EQ(done, (std::vector{1, 2}));
}

TEST(MainQueueTest, workIsDoneWhileOtherWorkWaitsInAnEventLoop)
{
    // The loop inside a piece of work must not begin the next piece, and that one must not be lost.
    const MainQueue mainQueue;
    std::vector<int> done;
    mainQueue.queue()->async([&] {
        mainQueue.queue()->async([&] { done.push_back(2); });
        for (int i = 0; i < 10; ++i)
            QCoreApplication::processEvents();
        done.push_back(1);
    });
    EXPECT_TRUE(waitUntil([&] { return done.size() == 2; }));
    EXPECT_EQ(done, (std::vector{1, 2}));
}

TEST(MainQueueTest, nothingRunsOnceItHasGone)
{
    auto mainQueue = std::make_unique<MainQueue>();
    const auto queue = mainQueue->queue();
    bool isDone = false;
    queue->async([&] { isDone = true; });
    mainQueue.reset();
    queue->async([&] { isDone = true; });
    std::thread([&] { queue->async([&] { isDone = true; }); }).join();
    // The work of a later queue follows all earlier work.
    const MainQueue later;
    bool isLaterDone = false;
    later.queue()->async([&] { isLaterDone = true; });
    EXPECT_TRUE(waitUntil([&] { return isLaterDone; }));
    EXPECT_FALSE(isDone);
}

TEST(MainQueueTest, threadsMaySubmitWhileItIsDestroyed)
{
    constexpr int rounds = 20;
    for (int round = 0; round < rounds; ++round) {
        auto mainQueue = std::make_unique<MainQueue>();
        int done = 0; // main thread only
        std::atomic<bool> isStopped = false;
        std::atomic<int> submitted = 0;
        std::thread submitter([&, queue = mainQueue->queue()] {
            while (!isStopped) {
                queue->async([&] { ++done; });
                ++submitted;
            }
        });
        EXPECT_TRUE(waitUntil([&] { return done > 0; }));
        mainQueue.reset();
        const int doneBefore = done;
        const int submittedBefore = submitted;
        EXPECT_TRUE(waitUntil([&] { return submitted > submittedBefore + 1; }));
        EXPECT_EQ(done, doneBefore) << "work ran after the end of its queue";
        isStopped = true;
        submitter.join();
    }
}

} // namespace tarnwell::test
