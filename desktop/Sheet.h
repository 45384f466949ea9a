// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <QPointer>

class QAbstractButton;
class QLabel;

namespace tarnwell
{

/// A dialog that blocks its window only. Escape and a request to close it click its escape button; where that
/// is absent, hidden or disabled, they do nothing.
class Sheet : public QDialog
{
    Q_OBJECT

public:
    explicit Sheet(QWidget* window);

    /// `button` is a child of the sheet.
    void setEscapeButton(QAbstractButton* button);
    bool hasEscapeButton() const { return !m_escapeButton.isNull(); }

    /// The text that the label, a child of the sheet, has when the sheet is shown becomes the accessible
    /// description of the sheet and of the label. Assistive tools do not read the text of a label that has an
    /// accessible name.
    void setDescribingLabel(QLabel* label);

    void reject() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    QPointer<QAbstractButton> m_escapeButton;
    QPointer<QLabel> m_describingLabel;
};

} // namespace tarnwell
