// SPDX-License-Identifier: MIT
#include "desktop/MainThread.h"

#include "tests/support/WindowTest.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

TEST(MainThreadTest, workFromAnotherThreadRunsOnTheMainThreadInItsOrder)
{
    constexpr int count = 1000;
    const MainThread mainThread;
    std::vector<int> done;
    std::vector<std::thread::id> threads;
    std::thread submitter([&, queue = mainThread.queue()] {
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

TEST(MainThreadTest, everyThreadsWorkKeepsItsOrder)
{
    constexpr int threadCount = 4;
    constexpr int count = 250;
    const MainThread mainThread;
    std::vector<std::vector<int>> done(threadCount);
    std::vector<std::thread> submitters;
    for (std::size_t thread = 0; thread < threadCount; ++thread) {
        submitters.emplace_back([&, thread, queue = mainThread.queue()] {
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

TEST(MainThreadTest, workOfTheMainThreadItselfWaitsForItsTurn)
{
    const MainThread mainThread;
    bool isDone = false;
    mainThread.queue()->async([&] { isDone = true; });
    EXPECT_FALSE(isDone);
    EXPECT_TRUE(waitUntil([&] { return isDone; }));
}

TEST(MainThreadTest, workMaySubmitWork)
{
    const MainThread mainThread;
    std::vector<int> done;
    mainThread.queue()->async([&] {
        mainThread.queue()->async([&] { done.push_back(2); });
        done.push_back(1);
    });
    EXPECT_TRUE(waitUntil([&] { return done.size() == 2; }));
    EXPECT_EQ(done, (std::vector{1, 2}));
}

TEST(MainThreadTest, workIsDoneWhileOtherWorkWaitsInAnEventLoop)
{
    // The loop inside a piece of work must not begin the next piece, and that one must not be lost.
    const MainThread mainThread;
    std::vector<int> done;
    mainThread.queue()->async([&] {
        mainThread.queue()->async([&] { done.push_back(2); });
        for (int i = 0; i < 10; ++i)
            QCoreApplication::processEvents();
        done.push_back(1);
    });
    EXPECT_TRUE(waitUntil([&] { return done.size() == 2; }));
    EXPECT_EQ(done, (std::vector{1, 2}));
}

TEST(MainThreadTest, nothingRunsOnceItHasGone)
{
    auto mainThread = std::make_unique<MainThread>();
    const auto queue = mainThread->queue();
    bool isDone = false;
    queue->async([&] { isDone = true; });
    mainThread.reset();
    queue->async([&] { isDone = true; });
    std::thread([&] { queue->async([&] { isDone = true; }); }).join();
    // A later queue's work comes after all that was there before.
    const MainThread later;
    bool isLaterDone = false;
    later.queue()->async([&] { isLaterDone = true; });
    EXPECT_TRUE(waitUntil([&] { return isLaterDone; }));
    EXPECT_FALSE(isDone);
}

TEST(MainThreadTest, wakesNobodyOnceItHasGone)
{
    auto mainThread = std::make_unique<MainThread>();
    const auto queue = mainThread->queue();
    mainThread.reset();
    // Takes the number of the descriptor by which the event loop was woken.
    const int descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    ASSERT_GE(descriptor, 0);
    queue->async([] {});
    eventfd_t rings = 0;
    EXPECT_NE(::eventfd_read(descriptor, &rings), 0);
    EXPECT_EQ(rings, 0u);
    ::close(descriptor);
}

} // namespace tarnwell::test
