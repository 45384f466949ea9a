// SPDX-License-Identifier: MIT
#include "benchmarks/PaintWatch.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

namespace tarnwell::bench
{

PaintWatch::PaintWatch(std::function<bool(const QWidget&)> isMeant)
    : m_isMeant(std::move(isMeant))
{
    QApplication::instance()->installEventFilter(this);
}

bool PaintWatch::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::Paint || m_isPainting)
        return false;
    const auto* widget = qobject_cast<QWidget*>(watched);
    if (widget == nullptr || !m_isMeant(*widget))
        return false;
    m_isPainting = true;
    // Comes when the whole window has been painted and handed over.
    QMetaObject::invokeMethod(
        this, [this] { finish(); }, Qt::QueuedConnection);
    return false;
}

void PaintWatch::finish()
{
    QApplication::sync();
    m_painted = m_stopwatch.elapsed();
    m_loop.quit();
}

double PaintWatch::wait()
{
    if (!m_painted)
        m_loop.exec();
    return *m_painted;
}

} // namespace tarnwell::bench
