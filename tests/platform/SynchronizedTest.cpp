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

TEST(SynchronizedTest, thePreviousValueIsReleased)
{
    auto held = std::make_shared<int>(1);
    Synchronized<std::shared_ptr<int>> value;
    value.store(held);
    EXPECT_EQ(held.use_count(), 2);
    value.store(nullptr);
    EXPECT_EQ(held.use_count(), 1);
}

/// Calls a function in its destructor.
struct DestructorCall {
    std::function<void()> onDestruction;
    explicit DestructorCall(std::function<void()> call)
        : onDestruction(std::move(call))
    {
    }
    ~DestructorCall() { onDestruction(); }
    DestructorCall(const DestructorCall&) = delete;
    DestructorCall& operator=(const DestructorCall&) = delete;
};

TEST(SynchronizedTest, thePreviousValuesDestructorMayUseTheHolder)
{
    Synchronized<std::shared_ptr<DestructorCall>> value;
    bool sawNextValue = false;
    value.store(std::make_shared<DestructorCall>([&] { sawNextValue = value.load() == nullptr; }));
    value.store(nullptr); // deadlocks if store destroys the previous value under the lock
    EXPECT_TRUE(sawNextValue);
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
