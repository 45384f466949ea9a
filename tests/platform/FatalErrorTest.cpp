// SPDX-License-Identifier: MIT
#include "platform/FatalError.h"

#include "tests/support/SilentStop.h"

#include <memory>
#include <optional>
#include <string>

namespace tarnwell::test
{

TEST(FatalErrorDeathTest, theProgramEndsAtOnceWithoutAMessage)
{
    EXPECT_SILENT_STOP(fatalError());
}

TEST(RequiredTest, whatAnOptionalHoldsIsGiven)
{
    const std::optional<std::string> text = "text";
    EXPECT_EQ(required(text), "text");
    EXPECT_EQ(&required(text), &*text);
    EXPECT_EQ(required(std::optional<int>(7)), 7);
}

TEST(RequiredTest, aFalseValueInAnOptionalIsAValue)
{
    EXPECT_FALSE(required(std::optional<bool>(false)));
}

TEST(RequiredTest, whatAPointerPointsAtIsGivenAndMayBeChanged)
{
    int number = 1;
    required(&number) = 2;
    EXPECT_EQ(number, 2);
    const auto owned = std::make_unique<int>(3);
    EXPECT_EQ(required(owned), 3);
}

TEST(RequiredDeathTest, anEmptyOptionalStopsTheProgram)
{
    EXPECT_SILENT_STOP(required(std::optional<int>()));
}

TEST(RequiredDeathTest, aNullPointerStopsTheProgram)
{
    const int* nothing = nullptr;
    EXPECT_SILENT_STOP(required(nothing));
    EXPECT_SILENT_STOP(required(std::shared_ptr<int>()));
}

} // namespace tarnwell::test
