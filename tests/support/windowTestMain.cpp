// SPDX-License-Identifier: MIT
#include "platform/StandardStreams.h"

#include <QApplication>

#include <gtest/gtest.h>

#include <clocale>

int main(int argc, char* argv[])
{
    tarnwell::prepareStandardStreams();
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    // Death tests start this program anew: a window system's connection does not survive a fork.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    return RUN_ALL_TESTS();
}
