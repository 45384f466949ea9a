// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/WindowTest.h"

#include <QAbstractButton>
#include <QImage>

#include <functional>
#include <string>

namespace tarnwell::bench
{

/// Drives the real window with the functions of the window tests. Each action returns its duration in
/// milliseconds. A failed expectation of these functions ends the benchmark, see windowBench.cpp.
class BenchWindow : public test::WindowTest
{
public:
    /// Shows the window. The default constructor uses the tools of the build tree.
    BenchWindow();
    explicit BenchWindow(const ToolContext& tools);

    /// The temporary folder of this window's files, ending in "/".
    std::string ownFolder() const { return folder(); }

    /// Opens a file. Measures from Return in the file panel until the progress sheet has closed and the
    /// controls are enabled.
    double open(const std::string& path);

    /// Clicks the toolbar button of the action. Measures until the view has been painted.
    double click(const char* actionName);

    /// Sets the view's picture as a refresh does. Measures until the view has been painted.
    double show(const QImage& picture);

    /// The view's picture at full size.
    QImage picture() { return shownPicture(); }

    /// Saves in the mode whose button has the text `mode`. Measures from the click on that button until the
    /// result alert has been painted.
    double save(const char* mode, const std::string& path);

    /// Calls `saving` just before the click and `saved` when the progress sheet closes.
    double save(const char* mode, const std::string& path, const std::function<void()>& saving,
        const std::function<void()>& saved);

private:
    void TestBody() override { }
    QAbstractButton* buttonOfAlert(const char* text);
};

} // namespace tarnwell::bench
