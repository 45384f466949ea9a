// SPDX-License-Identifier: MIT
#include "benchmarks/PaintTimer.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

namespace tarnwell::bench
{

PaintTimer::PaintTimer(std::function<bool(const QWidget&)> matches)
    : m_matches(std::move(matches))
{
    QApplication::instance()->installEventFilter(this);
}

bool PaintTimer::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::Paint || m_isPainting)
        return false;
    const auto* widget = qobject_cast<QWidget*>(watched);
    if (widget == nullptr || !m_matches(*widget))
        return false;
    m_isPainting = true;
    // Runs after the whole window has been painted and flushed.
    QMetaObject::invokeMethod(
        this, [this] { finish(); }, Qt::QueuedConnection);
    return false;
}

void PaintTimer::finish()
{
    QApplication::sync();
    m_painted = m_stopwatch.elapsed();
    m_loop.quit();
}

double PaintTimer::wait()
{
    if (!m_painted)
        m_loop.exec();
    return *m_painted;
}

} // namespace tarnwell::bench
