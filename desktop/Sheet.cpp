// SPDX-License-Identifier: MIT
#include "desktop/Sheet.h"

#include <QAbstractButton>
#include <QLabel>

namespace tarnwell
{

Sheet::Sheet(QWidget* window)
    : QDialog(window, Qt::Sheet | Qt::CustomizeWindowHint | Qt::WindowTitleHint)
{
    setWindowModality(Qt::WindowModal);
}

void Sheet::setEscapeButton(QAbstractButton* button)
{
    m_escapeButton = button;
}

void Sheet::setDescribingLabel(QLabel* label)
{
    m_describingLabel = label;
}

void Sheet::showEvent(QShowEvent* event)
{
    if (m_describingLabel) {
        setAccessibleDescription(m_describingLabel->text());
        m_describingLabel->setAccessibleDescription(m_describingLabel->text());
    }
    QDialog::showEvent(event);
}

void Sheet::reject()
{
    // click() ignores a disabled button, but not a hidden one.
    if (m_escapeButton && m_escapeButton->isVisible())
        m_escapeButton->click();
}

} // namespace tarnwell
