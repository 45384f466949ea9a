// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

#include <functional>

class QWidget;

namespace tarnwell
{

class SheetQueue;

/// A message for the user, shown as a sheet: a message text, an explanation and buttons in the order in which
/// they were added. Return presses the first button; Escape presses the one that says "OK", where there is
/// one.
class Alert
{
public:
    enum class Style { Warning, Informational };

    /// Receives 1000 for the first button, 1001 for the second, and so on.
    using Handler = std::function<void(int response)>;

    static constexpr int firstButtonResponse = 1000;
    static constexpr int secondButtonResponse = 1001;
    static constexpr int thirdButtonResponse = 1002;

    void setMessageText(const QString& text) { m_messageText = text; }
    void setInformativeText(const QString& text) { m_informativeText = text; }
    /// Warning where none is set.
    void setStyle(Style style) { m_style = style; }
    /// An alert without a button gets one that says "OK".
    void addButton(const QString& text) { m_buttons.append(text); }

    /// Shows the alert on `window` in its turn; the box lives until it is answered.
    void beginSheetModal(QWidget& window, SheetQueue& sheets, Handler handler = {}) const;

private:
    QString m_messageText;
    QString m_informativeText;
    Style m_style = Style::Warning;
    QStringList m_buttons;
};

} // namespace tarnwell
