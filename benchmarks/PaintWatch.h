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

/// Waits until a certain widget has been painted and the display has all of it. Main thread.
class PaintWatch : public QObject
{
public:
    /// Watches from now on for the first widget that is meant by `isMeant`.
    explicit PaintWatch(std::function<bool(const QWidget&)> isMeant);

    /// Runs events until then. Returns milliseconds since this watch was made.
    double wait();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void finish();

    std::function<bool(const QWidget&)> m_isMeant;
    Stopwatch m_stopwatch;
    QEventLoop m_loop;
    bool m_isPainting = false;
    std::optional<double> m_painted;
};

} // namespace tarnwell::bench
