// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/WindowTest.h"

#include <QAbstractButton>
#include <QImage>

#include <functional>
#include <string>

namespace tarnwell::bench
{

/// The real window, handled with the means of its tests; each action tells how long it took, in milliseconds.
/// What such a test would fail for ends the benchmark, see windowBench.cpp.
class BenchWindow : public test::WindowTest
{
public:
    /// Shows the window. Without tools: the real ones of the build tree.
    BenchWindow();
    explicit BenchWindow(const ToolContext& tools);

    /// A folder for files of the benchmark, ending in "/".
    std::string ownFolder() const { return folder(); }

    /// Opens a file: from Return in the file panel until the controls are enabled and no sheet is in front of
    /// them.
    double open(const std::string& path);

    /// Clicks the toolbar's button of that action: until the picture is painted.
    double click(const char* actionName);

    /// Shows the picture in the view as a refresh does: until it is painted.
    double show(const QImage& picture);

    /// The picture that the view shows, in its own size.
    QImage picture() { return shownPicture(); }

    /// Saves by the button of that text: from the click on it until the result is painted.
    double save(const char* mode, const std::string& path);

    /// The same; `saving` is called when the click is about to come, `saved` when the progress sheet goes.
    double save(const char* mode, const std::string& path, const std::function<void()>& saving,
        const std::function<void()>& saved);

private:
    void TestBody() override { }
    QAbstractButton* buttonOfAlert(const char* text);
};

} // namespace tarnwell::bench
