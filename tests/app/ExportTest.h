// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"

#include <QAction>
#include <QDialog>
#include <QProgressBar>
#include <QPushButton>

#include <string>

namespace tarnwell::test
{

/// The window with an open video that leaves no choice of a mode.
class ExportTest : public FakeToolsTest
{
protected:
    void SetUp() override
    {
        tools().setSniffer(sniffing(reportOf({.codec = "mpeg4"}))); // no choice of a mode
        start();
        openVideo();
    }

    std::string output() const { return folder() + "out.mp4"; }
    std::string leaveOutput() const { return "copy " + folder() + "still.png\n"; }
    QProgressBar& bar() { return find<QProgressBar>("progressBar"); }
    QPushButton& cancelButton() { return find<QPushButton>("progressCancel"); }

    void save(const std::string& creatorScript)
    {
        tools().setCreator(creatorScript);
        saveByPanel(output());
    }

    void finish() { answer(shownAlert(), "OK"); }

    void cancelWhenPossible()
    {
        ASSERT_TRUE(waitUntil([this] { return isProgressShown() && cancelButton().isEnabled(); }));
        QTest::mouseClick(&cancelButton(), Qt::LeftButton);
    }

    void expectIdle()
    {
        ASSERT_TRUE(waitUntil([this] { return !isProgressShown(); }));
        QTest::qWait(0);
        EXPECT_FALSE(isAlertShown());
    }
};

} // namespace tarnwell::test
