// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

namespace tarnwell
{

/// While one lives, the program takes no input: keys, clicks, drags, drops and requests to close a window are
/// dropped, not kept for later. Painting, timers and the like go on. Main thread.
class InputBlocker : public QObject
{
    Q_OBJECT

public:
    InputBlocker();
    ~InputBlocker() override;

    /// Whether one lives.
    static bool isActive();

    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace tarnwell
