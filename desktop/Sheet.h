// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <QPointer>

class QAbstractButton;

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

    void reject() override;

private:
    QPointer<QAbstractButton> m_escapeButton;
};

} // namespace tarnwell
