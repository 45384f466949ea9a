// SPDX-License-Identifier: MIT
#include "platform/ToolContext.h"

#include <gtest/gtest.h>

#include <thread>

namespace tarnwell::test
{

TEST(ToolContextTest, thePlainWaitMakesTheCallOnTheCallingThread)
{
    std::thread::id caller;
    waitBlocking([&caller] { caller = std::this_thread::get_id(); });
    EXPECT_EQ(caller, std::this_thread::get_id());
}

TEST(ToolContextTest, theWaitIsPlainUnlessSaidOtherwise)
{
    int calls = 0;
    ToolContext{Bundle("/nowhere")}.wait([&calls] { ++calls; });
    EXPECT_EQ(calls, 1);
}

} // namespace tarnwell::test
