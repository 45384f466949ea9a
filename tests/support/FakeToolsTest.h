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

/// The object names of the six controls that need an open video.
inline constexpr const char* editingControls[] = {"saveToolBarBTN", "rotateLeftBTN", "rotateRightBTN",
    "resetBTN", "flipVerticallyBTN", "flipHorizontallyBTN"};

/// The real window with fake tools. At first sniffer reports an H.264 video of 8 seconds, and creator
/// copies a still picture to its output. Sniffer writes its arguments into the file "probed" of the test's
/// folder.
class FakeToolsTest : public WindowTest
{
protected:
    FakeToolsTest();

    void start() { WindowTest::start(m_tools.context()); }

    FakeTools& tools() { return m_tools; }

    /// The still that creator delivers; its corners differ.
    const QImage& still() const { return m_still; }

    /// A sniffer script that reports `report`.
    std::string sniffing(const std::string& report);

    /// A creator script that delivers the still.
    std::string stillScript() const;

    /// Opens the file clip.mp4 of the test's folder, which it makes, and waits until it is shown.
    void openVideo();

    /// How many different colours a picture has, counted up to a few.
    static int coloursIn(const QImage& picture);

private:
    FakeTools m_tools;
    QImage m_still;
};

} // namespace tarnwell::test
