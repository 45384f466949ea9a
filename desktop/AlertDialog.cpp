// SPDX-License-Identifier: MIT
#include "desktop/AlertDialog.h"

#include <QAccessibleWidget>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QStyle>

#include <algorithm>

namespace tarnwell
{

namespace
{

// In average characters. That is some 70 characters of English, a readable line.
constexpr int longestLine = 84;
constexpr double largestShareOfScreen = 0.7;

QString okText()
{
    return QStringLiteral("OK");
}

/// The width of the label's text without wrapping, but at most that of the longest readable line.
int textWidth(const QLabel& label)
{
    const QFontMetrics metrics = label.fontMetrics();
    const int natural = metrics.size(Qt::TextExpandTabs, label.text()).width() + metrics.maxWidth() / 2;
    const int readable = longestLine * metrics.averageCharWidth();
    const int available = qRound(label.screen()->availableSize().width() * largestShareOfScreen);
    return std::min({natural, readable, available});
}

/// Qt has the role of an alert for its own message box only.
QAccessibleInterface* createAccessibleAlert(const QString& className, QObject* object)
{
    auto* dialog = className == QLatin1String(AlertDialog::staticMetaObject.className())
        ? qobject_cast<AlertDialog*>(object)
        : nullptr;
    return dialog != nullptr ? new QAccessibleWidget(dialog, QAccessible::AlertMessage) : nullptr;
}

} // namespace

AlertDialog::AlertDialog(QWidget& window, const Alert& alert)
    : Sheet(&window)
    , m_alert(alert)
{
    QAccessible::installFactory(createAccessibleAlert); // Qt ignores a second installation
    setWindowFlag(Qt::WindowCloseButtonHint);
    setWindowTitle(alert.title());
    setAccessibleName(alert.messageText());
    setAccessibleDescription(alert.informativeText().trimmed());

    auto* texts = new QVBoxLayout;
    texts->addWidget(makeLabel("alertMessage", alert.messageText(), QFont::Bold));
    if (!alert.informativeText().isEmpty())
        texts->addWidget(makeLabel("alertInformation", alert.informativeText(), QFont::Normal));
    texts->addStretch();

    auto* grid = new QGridLayout(this);
    grid->setSizeConstraint(QLayout::SetFixedSize);
    const int gap = fontMetrics().lineSpacing();
    grid->setContentsMargins(gap, gap, gap, gap);
    grid->setSpacing(gap);
    texts->setSpacing(gap / 2);
    grid->setColumnStretch(1, 1);
    grid->addWidget(makeIcon(), 0, 0, Qt::AlignTop);
    grid->addLayout(texts, 0, 1);
    grid->addLayout(makeButtonRow(), 1, 0, 1, 2);
}

QLabel* AlertDialog::makeIcon()
{
    const bool isWarning = m_alert.style() == Alert::Style::Warning;
    const auto symbol = isWarning ? QStyle::SP_MessageBoxWarning : QStyle::SP_MessageBoxInformation;
    const int side = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    auto* label = new QLabel(this);
    label->setObjectName(QStringLiteral("alertIcon"));
    label->setAccessibleName(isWarning ? QStringLiteral("Warning") : QStringLiteral("Information"));
    label->setPixmap(
        style()->standardIcon(symbol, nullptr, this).pixmap(QSize(side, side), devicePixelRatioF()));
    return label;
}

QLabel* AlertDialog::makeLabel(const char* name, const QString& text, QFont::Weight weight)
{
    auto* label = new QLabel(text, this);
    label->setObjectName(QLatin1String(name));
    QFont font = label->font();
    font.setWeight(weight);
    label->setFont(font);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse); // the support address can be copied
    label->setWordWrap(true);
    label->setMinimumWidth(textWidth(*label));
    // Ignore QLabel's width hint; the minimum width set above applies.
    QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    label->setSizePolicy(policy);
    return label;
}

QBoxLayout* AlertDialog::makeButtonRow()
{
    for (const QString& text : m_alert.buttons().isEmpty() ? QStringList(okText()) : m_alert.buttons())
        addButton(text);
    auto* row = new QHBoxLayout;
    row->setSpacing(fontMetrics().lineSpacing() / 2);
    row->addStretch();
    for (QPushButton* button : m_buttons)
        row->addWidget(button);
    if (m_buttons.size() == 1)
        setEscapeButton(m_buttons.first());
    m_buttons.first()->setDefault(true);
    m_buttons.first()->setFocus();
    return row;
}

void AlertDialog::addButton(const QString& text)
{
    auto* button = new QPushButton(text, this);
    const int response = Alert::firstButtonResponse + static_cast<int>(m_buttons.size());
    connect(button, &QPushButton::clicked, this, [this, response] { done(response); });
    if (text == okText())
        setEscapeButton(button);
    m_buttons.append(button);
}

void AlertDialog::reject()
{
    if (hasEscapeButton())
        Sheet::reject();
    else
        done(Alert::dismissedResponse);
}

void AlertDialog::showEvent(QShowEvent* event)
{
    Sheet::showEvent(event);
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

} // namespace tarnwell
