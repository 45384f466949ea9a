// SPDX-License-Identifier: MIT
#include "desktop/Sheet.h"

#include <QAbstractButton>

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

void Sheet::reject()
{
    // A hidden or disabled button is not pressed by click() either.
    if (m_escapeButton && m_escapeButton->isVisible())
        m_escapeButton->click();
}

} // namespace tarnwell
