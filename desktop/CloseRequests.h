// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <cstdint>
#include <functional>

class QWidget;

namespace tarnwell
{

class SheetQueue;

/// Reports the user's requests to close a window that shows sheets. If the sheet is modal, Qt ignores those
/// of an X11 window manager, and would hide the window without ending the program on Wayland. If it is not,
/// Qt would close the window and click the sheet's escape button. Requests to close a window without sheets
/// remain Qt's. Main thread.
class CloseRequests : public QObject, private QAbstractNativeEventFilter
{
public:
    /// `window` and `sheets`, the queue of its sheets, must outlive the object.
    CloseRequests(QWidget& window, const SheetQueue& sheets, std::function<void()> handler);
    ~CloseRequests() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

    QWidget& m_window;
    const SheetQueue& m_sheets;
    std::function<void()> m_handler;
    std::uint32_t m_protocols; // X11 atoms; 0 where Qt does not run on X11
    std::uint32_t m_deleteWindow;
};

} // namespace tarnwell
