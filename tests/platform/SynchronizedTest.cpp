// SPDX-License-Identifier: MIT
#include "platform/Synchronized.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace tarnwell::test
{

TEST(SynchronizedTest, itHoldsADefaultValueFirst)
{
    EXPECT_EQ(Synchronized<int>().load(), 0);
    EXPECT_EQ(Synchronized<std::shared_ptr<int>>().load(), nullptr);
}

TEST(SynchronizedTest, theStoredValueIsLoaded)
{
    Synchronized<std::string> text;
    text.store("first");
    text.store("second");
    EXPECT_EQ(text.load(), "second");
    EXPECT_EQ(text.load(), "second");
}

TEST(SynchronizedTest, theEarlierValueIsReleased)
{
    auto held = std::make_shared<int>(1);
    Synchronized<std::shared_ptr<int>> value;
    value.store(held);
    EXPECT_EQ(held.use_count(), 2);
    value.store(nullptr);
    EXPECT_EQ(held.use_count(), 1);
}

/// Calls something when it goes.
struct Farewell {
    std::function<void()> atTheEnd;
    explicit Farewell(std::function<void()> call)
        : atTheEnd(std::move(call))
    {
    }
    ~Farewell() { atTheEnd(); }
    Farewell(const Farewell&) = delete;
    Farewell& operator=(const Farewell&) = delete;
};

TEST(SynchronizedTest, theEarlierValueMayUseTheHolderWhenItGoes)
{
    Synchronized<std::shared_ptr<Farewell>> value;
    bool sawTheNext = false;
    value.store(std::make_shared<Farewell>([&] { sawTheNext = value.load() == nullptr; }));
    value.store(nullptr); // would wait for itself if the earlier value went under the lock
    EXPECT_TRUE(sawTheNext);
}

TEST(SynchronizedTest, aReaderNeverSeesHalfAValue)
{
    Synchronized<std::string> text;
    const std::string values[] = {std::string(1000, 'a'), std::string(2000, 'b')};
    text.store(values[0]);
    std::jthread writer([&](const std::stop_token& stop) {
        for (std::size_t round = 0; !stop.stop_requested(); ++round)
            text.store(values[round % 2]);
    });
    for (int round = 0; round < 20000; ++round) {
        const std::string seen = text.load();
        ASSERT_TRUE(seen == values[0] || seen == values[1]);
    }
}

} // namespace tarnwell::test
