// SPDX-License-Identifier: MIT
#include "desktop/Alert.h"

#include "desktop/FocusRing.h"
#include "desktop/SheetQueue.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

namespace tarnwell
{

namespace
{

QString okText()
{
    return QStringLiteral("OK");
}

void addButtons(QMessageBox& box, const QStringList& texts)
{
    for (const QString& text : texts) {
        // One role for all: boxes order their buttons by role, each desktop in its own way.
        QPushButton* button = box.addButton(text, QMessageBox::ActionRole);
        new FocusRing(*button);
        if (box.defaultButton() == nullptr)
            box.setDefaultButton(button);
        if (text == okText())
            box.setEscapeButton(button);
    }
}

int responseOf(const QMessageBox& box)
{
    // A request to close the window ends the box before it says which button that stands for.
    QAbstractButton* pressed = box.clickedButton() != nullptr ? box.clickedButton() : box.escapeButton();
    const int place = static_cast<int>(box.buttons().indexOf(pressed));
    return Alert::firstButtonResponse + place;
}

/// Gives the box what is said when it appears: its title is but the program's name.
void nameForScreenReaders(QMessageBox& box)
{
    box.setAccessibleName(box.text());
    box.setAccessibleDescription(box.informativeText().trimmed());
    if (auto* symbol = box.findChild<QLabel*>(QStringLiteral("qt_msgboxex_icon_label"))) {
        const bool isWarning = box.icon() == QMessageBox::Warning;
        symbol->setAccessibleName(isWarning ? QStringLiteral("Warning") : QStringLiteral("Information"));
    }
}

} // namespace

void Alert::beginSheetModal(QWidget& window, SheetQueue& sheets, Handler handler) const
{
    const auto icon = m_style == Style::Warning ? QMessageBox::Warning : QMessageBox::Information;
    auto* box = new QMessageBox(icon, window.windowTitle(), m_messageText, QMessageBox::NoButton, &window,
        Qt::Sheet | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
    box->setWindowModality(Qt::WindowModal);
    box->setTextFormat(Qt::PlainText);
    box->setInformativeText(m_informativeText);
    // The message stands out from its explanation.
    if (auto* label = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))) {
        QFont bold = label->font();
        bold.setBold(true);
        label->setFont(bold);
    }
    // The box's own text format does not reach this label.
    if (auto* label = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel")))
        label->setTextFormat(Qt::PlainText);
    nameForScreenReaders(*box);
    addButtons(*box, m_buttons.isEmpty() ? QStringList(okText()) : m_buttons);
    sheets.begin(box, [box, answer = std::move(handler)](int) {
        if (answer)
            answer(responseOf(*box));
        box->deleteLater(); // not before: the answer may run an event loop inside the click that the box
                            // handles
    });
}

} // namespace tarnwell
