// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/Alert.h"
#include "desktop/Sheet.h"

#include <QList>

class QBoxLayout;
class QLabel;
class QPushButton;

namespace tarnwell
{

/// The sheet that shows an alert: the icon of its style, the bold message, the informative text as plain
/// text, and the buttons from left to right in the order in which they were added, independent of the
/// desktop's style. The dialog's result is the response of the pressed button, or Alert::dismissedResponse.
class AlertDialog : public Sheet
{
    Q_OBJECT

public:
    AlertDialog(QWidget& window, const Alert& alert);

    QString text() const { return m_alert.messageText(); }
    QString informativeText() const { return m_alert.informativeText(); }
    Alert::Style alertStyle() const { return m_alert.style(); }
    const QList<QPushButton*>& buttons() const { return m_buttons; }

    void reject() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    QLabel* makeIcon();
    QLabel* makeLabel(const char* name, const QString& text, QFont::Weight weight);
    QBoxLayout* makeButtonRow();
    void addButton(const QString& text);

    Alert m_alert;
    QList<QPushButton*> m_buttons;
};

} // namespace tarnwell
