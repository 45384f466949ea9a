// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <QPointer>

class QAbstractButton;
class QLabel;

namespace tarnwell
{

/// A dialog that belongs to a window and blocks it and nothing else. It ends only when its owner ends it:
/// Escape and a request to close it press its escape button, where it has one that can be pressed.
class Sheet : public QDialog
{
    Q_OBJECT

public:
    explicit Sheet(QWidget* window);

    /// Not owned; part of the sheet.
    void setEscapeButton(QAbstractButton* button);

    /// What the label says when the sheet comes up is the sheet's description to assistive tools, and the
    /// label's own, whose text they do not get where it has a name. Not owned; part of the sheet.
    void setDescribingLabel(QLabel* label);

    void reject() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    QPointer<QAbstractButton> m_escapeButton;
    QPointer<QLabel> m_describingLabel;
};

} // namespace tarnwell
