// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <cstdint>
#include <functional>

class QWidget;

namespace tarnwell
{

/// Reports the user's requests to close a window while a modal sheet blocks it: Qt ignores those of an X11
/// window manager, and would hide the window without ending the program on Wayland. Requests to close a
/// window that is not blocked remain Qt's. Main thread.
class CloseRequests : public QObject, private QAbstractNativeEventFilter
{
public:
    /// `window` must outlive the object.
    CloseRequests(QWidget& window, std::function<void()> handler);
    ~CloseRequests() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    bool isBlocked() const;

    QWidget& m_window;
    std::function<void()> m_handler;
    std::uint32_t m_protocols; // X11 atoms; 0 where Qt does not run on X11
    std::uint32_t m_deleteWindow;
};

} // namespace tarnwell
