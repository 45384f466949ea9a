// SPDX-License-Identifier: MIT
#pragma once

#include "benchmarks/Measure.h"

#include <QEventLoop>
#include <QObject>

#include <functional>
#include <optional>

class QWidget;

namespace tarnwell::bench
{

/// Measures the time from its construction until a widget has been painted and the X server has processed the
/// drawing requests. Main thread only.
class PaintTimer : public QObject
{
public:
    /// Waits for a paint event of the first widget for which `matches` returns true.
    explicit PaintTimer(std::function<bool(const QWidget&)> matches);

    /// Runs the event loop until the paint. Returns the time since the construction in milliseconds.
    double wait();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void finish();

    std::function<bool(const QWidget&)> m_matches;
    Stopwatch m_stopwatch;
    QEventLoop m_loop;
    bool m_isPainting = false;
    std::optional<double> m_painted;
};

} // namespace tarnwell::bench
