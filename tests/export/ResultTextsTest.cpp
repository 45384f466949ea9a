// SPDX-License-Identifier: MIT
#include "export/ResultTexts.h"

#include <gtest/gtest.h>

namespace tarnwell::test
{

// OrientationLabelTest covers the word for every state.
TEST(SuccessMessageTest, containsTheOrientationLabel)
{
    EXPECT_EQ(successMessage({1, false, false}), "Video Processed Successfully!");
    EXPECT_EQ(successMessage({2, false, false}), "Video Rotated Successfully!");
    EXPECT_EQ(successMessage({1, false, true}), "Video Flipped Successfully!");
    EXPECT_EQ(successMessage({4, true, false}), "Video Rotated and Flipped Successfully!");
}

} // namespace tarnwell::test
