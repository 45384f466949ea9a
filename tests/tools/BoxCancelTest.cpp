// SPDX-License-Identifier: MIT
#include "tests/tools/MemoryFile.h"
#include "tests/tools/MovieBytes.h"
#include "tests/tools/RefusedCall.h"
#include "tools/Boxes.h"
#include "tools/Cancel.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <unistd.h>

namespace tarnwell::test
{

TEST(BoxCancelTest, aCancelEndsTheWalkThroughManyBoxes)
{
    constexpr int count = 5000;
    std::string bytes;
    for (int place = 0; place < count; ++place)
        bytes += box("free", "");
    const MemoryFile file(bytes);
    const auto boxesAfter = [&file](bool isCancel) {
        handleCancelSignals();
        if (isCancel)
            ::kill(::getpid(), SIGTERM);
        return BoxReader(file.descriptor()).boxesOfFile();
    };
    EXPECT_TRUE(holdsInChild([&] { return !boxesAfter(true); }));
    EXPECT_TRUE(holdsInChild([&] {
        const auto boxes = boxesAfter(false);
        return boxes && boxes->size() == count;
    }));
}

} // namespace tarnwell::test
