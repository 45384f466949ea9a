// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusVariant>
#include <QObject>
#include <QString>

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
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void readSetting();
};

} // namespace tarnwell
