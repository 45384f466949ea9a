// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/FakeTools.h"
#include "tests/support/Reports.h"
#include "tests/support/Samples.h"
#include "tests/support/WindowTest.h"

#include <QImage>
#include <QSize>
#include <QTest>
#include <QTimer>

#include <future>

namespace tarnwell::test
{

inline constexpr QSize stillSize = {48, 32};

/// The object names of the six controls that are enabled only with an open video.
inline constexpr const char* editingControls[] = {"saveToolBarBTN", "rotateLeftBTN", "rotateRightBTN",
    "resetBTN", "flipVerticallyBTN", "flipHorizontallyBTN"};

/// The real window with fake tools. By default sniffer reports an H.264 video of 8 seconds and writes its
/// arguments into the file "probed" of the test's folder, and creator copies a still to its output.
class FakeToolsTest : public WindowTest
{
protected:
    FakeToolsTest();

    void start() { WindowTest::start(m_tools.context()); }

    FakeTools& tools() { return m_tools; }

    /// The still of creator; its corners have different colours.
    const QImage& still() const { return m_still; }

    /// A script for sniffer that prints `report`.
    std::string sniffing(const std::string& report);

    /// A script for creator that copies the still to its output.
    std::string stillScript() const;

    /// Creates clip.mp4 in the test's folder, opens it and waits until it is shown.
    void openVideo();

    /// The number of different colours in a picture; counting stops after a few.
    static int coloursIn(const QImage& picture);

private:
    FakeTools m_tools;
    QImage m_still;
};

} // namespace tarnwell::test
