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

/// The window with an open video whose codec leaves no choice of the mode.
class ExportTest : public FakeToolsTest
{
protected:
    void SetUp() override
    {
        tools().setSniffer(sniffing(reportOf({.codec = "mpeg4"})));
        start();
        openVideo();
    }

    /// The script with the test's folder in the place of each "@".
    std::string inFolder(std::string script) const
    {
        for (auto place = script.find('@'); place != std::string::npos; place = script.find('@'))
            script.replace(place, 1, folder());
        return script;
    }

    std::string output() const { return folder() + "out.mp4"; }
    std::string leaveOutput() const { return "copy " + folder() + "still.jpg\n"; }
    QProgressBar& bar() { return find<QProgressBar>("progressBar"); }
    QPushButton& cancelButton() { return find<QPushButton>("progressCancel"); }

    void save(const std::string& creatorScript)
    {
        tools().setCreator(creatorScript);
        saveByPanel(output());
    }

    void finish() { answer(shownAlert(), "OK"); }

    bool isCancelPossible() { return isProgressShown() && cancelButton().isEnabled(); }

    void cancelWhenPossible()
    {
        ASSERT_TRUE(waitUntil([this] { return isCancelPossible(); }));
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
