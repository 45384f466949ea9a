// SPDX-License-Identifier: MIT
#include "platform/CommitToken.h"

#include <gtest/gtest.h>

#include <sys/eventfd.h>
#include <sys/resource.h>

namespace tarnwell::test
{

TEST(CommitTokenTest, isOursOnceItIsTaken)
{
    CommitToken token;
    EXPECT_TRUE(token.take());
    EXPECT_TRUE(token.take());
    eventfd_t value = 0;
    EXPECT_NE(::eventfd_read(token.descriptor(), &value), 0);
}

TEST(CommitTokenTest, isNotOursAfterAnotherProcessHasTakenIt)
{
    CommitToken token;
    eventfd_t value = 0;
    EXPECT_EQ(::eventfd_read(token.descriptor(), &value), 0);
    EXPECT_FALSE(token.take());
    EXPECT_FALSE(token.take());
}

TEST(CommitTokenTest, isOursIfTheSystemRefusesToCreateIt)
{
    rlimit usual = {};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &usual), 0);
    const rlimit none = {0, usual.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    CommitToken token;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &usual), 0);
    EXPECT_EQ(token.descriptor(), -1);
    EXPECT_TRUE(token.take());
}

} // namespace tarnwell::test
