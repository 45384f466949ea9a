// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

#include <functional>

class QWidget;

namespace tarnwell
{

class SheetQueue;

/// The content of an alert: a title, a message text, an informative text and buttons. Return presses the
/// first button. Escape and a request to close the window press the only button, or the button "OK" of
/// several; an alert without such a button is dismissed.
class Alert
{
public:
    enum class Style { Warning, Informational };

    /// Receives 1000 for the first button, 1001 for the second, and so on, or dismissedResponse.
    using Handler = std::function<void(int response)>;

    static constexpr int firstButtonResponse = 1000;
    static constexpr int secondButtonResponse = 1001;
    static constexpr int thirdButtonResponse = 1002;
    static constexpr int dismissedResponse = 0;

    /// The title of the window.
    QString title() const { return m_title; }
    void setTitle(const QString& text) { m_title = text; }

    QString messageText() const { return m_messageText; }
    void setMessageText(const QString& text) { m_messageText = text; }

    QString informativeText() const { return m_informativeText; }
    void setInformativeText(const QString& text) { m_informativeText = text; }

    Style style() const { return m_style; }
    void setStyle(Style style) { m_style = style; }

    /// The texts of the added buttons. An alert without a button shows one button "OK".
    const QStringList& buttons() const { return m_buttons; }
    void addButton(const QString& text) { m_buttons.append(text); }

    /// Shows the alert on `window` when the sheets before it have ended. The handler runs on the main thread.
    /// It is not called if the dialog is destroyed without an answer.
    void beginSheetModal(QWidget& window, SheetQueue& sheets, Handler handler = {}) const;

private:
    QString m_title;
    QString m_messageText;
    QString m_informativeText;
    Style m_style = Style::Warning;
    QStringList m_buttons;
};

} // namespace tarnwell
