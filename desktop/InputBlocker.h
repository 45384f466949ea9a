// SPDX-License-Identifier: MIT
#pragma once

#include <QEvent>
#include <QObject>

namespace tarnwell
{

/// Drops all input of the program while an object of this class exists: keys, clicks, drags, drops and
/// requests to close a window. Painting and timers go on. Qt's modal dialogs do not do this: they block other
/// windows but not themselves, and QEventLoop::ExcludeUserInputEvents delivers the input later. Main thread.
class InputBlocker : public QObject
{
    Q_OBJECT

public:
    InputBlocker();
    ~InputBlocker() override;

    /// Whether events of that type are input.
    static bool isInput(QEvent::Type type);

    /// Whether an object of this class exists.
    static bool isActive();

    /// Ends the program as the menu item Quit does, unless input is dropped. Returns whether it does.
    static bool exitUnlessActive();

    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace tarnwell
