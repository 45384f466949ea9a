// SPDX-License-Identifier: MIT
// The limits of a report.
#include "tests/tools/RefusedCall.h"
#include "tools/Child.h"
#include "tools/Confinement.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <string>
#include <sys/resource.h>

namespace tarnwell::test
{

namespace
{

constexpr int killed = 128 + SIGKILL;

} // namespace

TEST(ChildOutputTest, aChildThatBlocksIsKilledWhenItsTimeIsOver)
{
    ChildPlan plan;
    plan.program = "/bin/sleep";
    plan.arguments = {"1000"};
    int status = 0;
    EXPECT_EQ(outputOfChild(plan, status, -1, std::chrono::milliseconds(200)), "");
    EXPECT_EQ(status, killed);
}

TEST(ChildOutputTest, aChildThatFloodsItsOutputIsKilled)
{
    ChildPlan plan;
    plan.program = "/usr/bin/yes";
    int status = 0;
    const std::string text = outputOfChild(plan, status);
    EXPECT_EQ(status, killed);
    EXPECT_GT(text.size(), mostOutput);
    EXPECT_LT(text.size(), mostOutput + (std::size_t(1) << 20U));
}

TEST(ChildOutputTest, aReportHasLittleProcessorTimeAndAnEncodingHasAny)
{
    const auto timeOf = [](bool isProbe) {
        AccessRights rights;
        rights.isProbe = isProbe;
        confine(rights);
        rlimit limit = {};
        ::getrlimit(RLIMIT_CPU, &limit);
        return limit.rlim_cur;
    };
    EXPECT_TRUE(holdsInChild([&] { return timeOf(true) <= 60; }));
    EXPECT_TRUE(holdsInChild([&] { return timeOf(false) == RLIM_INFINITY; }));
}

} // namespace tarnwell::test
