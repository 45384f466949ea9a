// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QDBusMessage;

namespace tarnwell
{

/// Follows the desktop's choice of light or dark colours, which the settings portal publishes, as long as the
/// object exists. Replaces Qt's palette only if it contradicts the choice. Main thread.
class ColorScheme : public QObject
{
    Q_OBJECT

public:
    /// Reads the setting before it returns if the portal runs already, otherwise later.
    ColorScheme();

private Q_SLOTS:
    void settingChanged(const QDBusMessage& signal);

private:
    void readSetting();
};

} // namespace tarnwell
