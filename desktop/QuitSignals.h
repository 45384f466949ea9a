// SPDX-License-Identifier: MIT
#pragma once

#include <QSocketNotifier>

#include <functional>

namespace tarnwell
{

/// Handles the signals that ask a program to end: SIGTERM, and SIGINT and SIGHUP unless the caller ignores
/// them, as nohup does. Exists once, on the main thread, until the process ends.
class QuitSignals
{
public:
    /// `quit` is called in the event loop, a nested one too, after the first signal. A second signal kills
    /// the process.
    explicit QuitSignals(const std::function<void()>& quit);
    QuitSignals(const QuitSignals&) = delete;
    QuitSignals& operator=(const QuitSignals&) = delete;

private:
    QSocketNotifier m_notifier;
};

} // namespace tarnwell
