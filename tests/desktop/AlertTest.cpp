// SPDX-License-Identifier: MIT
#include "desktop/AlertDialog.h"
#include "desktop/SheetQueue.h"
#include "tests/desktop/ParentWindow.h"
#include "tests/support/RealInput.h"

#include <QAccessible>
#include <QApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPointer>
#include <QProxyStyle>
#include <QPushButton>
#include <QWindow>

#include <gtest/gtest.h>

#include <map>
#include <utility>
#include <vector>

namespace tarnwell::test
{

class AlertTest : public testing::Test
{
protected:
    static Alert alertWithButtons(const QStringList& texts)
    {
        Alert alert;
        alert.setMessageText(QStringLiteral("Message"));
        for (const QString& text : texts)
            alert.addButton(text);
        return alert;
    }

    static QStringList resultButtons()
    {
        return {QStringLiteral("OK"), QStringLiteral("Show in Finder"),
            QStringLiteral("Launch Video in QuickTime")};
    }

    static QStringList modeButtons() { return {QStringLiteral("Fix Flag"), QStringLiteral("Transcode")}; }

    /// Shows the alert, waits until it has the keyboard and collects its responses.
    void show(const Alert& alert)
    {
        alert.beginSheetModal(m_window, m_sheets, [this](int response) { m_responses.push_back(response); });
        m_box = m_window.findChild<AlertDialog*>();
        ASSERT_NE(m_box, nullptr);
        waitForKeyboard(*m_box);
    }

    QAbstractButton& button(const QString& text)
    {
        for (QAbstractButton* button : m_box->buttons()) {
            if (button->text() == text)
                return *button;
        }
        ADD_FAILURE() << "no button " << text.toStdString();
        return *m_box->buttons().first();
    }

    /// The texts of the visible buttons from left to right.
    QStringList shownButtons() const
    {
        std::map<int, QString> byPlace;
        for (QAbstractButton* button : m_box->findChildren<QAbstractButton*>()) {
            if (button->isVisible())
                byPlace[button->mapToGlobal(QPoint()).x()] = button->text();
        }
        QStringList texts;
        for (const auto& [place, text] : byPlace)
            texts.append(text);
        return texts;
    }

    QLabel& label(const char* name) { return *m_box->findChild<QLabel*>(QString::fromLatin1(name)); }

    ParentWindow m_window;
    SheetQueue m_sheets{m_window};
    QPointer<AlertDialog> m_box;
    std::vector<int> m_responses;
};

TEST_F(AlertTest, showsItsTextsLiterally)
{
    const QString message = QStringLiteral("First <b>line</b>.\nSecond & last line?");
    const QString information = QStringLiteral("Contact : someone@example.org <a href='x'>desk</a>");
    Alert alert;
    alert.setTitle(QStringLiteral("Title"));
    alert.setMessageText(message);
    alert.setInformativeText(information);
    show(alert);
    for (const auto& [name, text] : {std::pair("alertMessage", message), {"alertInformation", information}}) {
        EXPECT_EQ(label(name).text(), text);
        EXPECT_EQ(label(name).textFormat(), Qt::PlainText) << name;
        EXPECT_TRUE(label(name).isVisible());
    }
    EXPECT_EQ(m_box->windowTitle(), QStringLiteral("Title"));
}

TEST_F(AlertTest, wrapsLongTextsAtAReadableWidthAndShowsThemInWhole)
{
    Alert alert = alertWithButtons(resultButtons());
    alert.setInformativeText(QStringLiteral("twelve words of text ").repeated(40));
    show(alert);
    const QLabel& text = label("alertInformation");
    EXPECT_LE(text.width(), 90 * text.fontMetrics().averageCharWidth());
    EXPECT_GE(text.width(), 60 * text.fontMetrics().averageCharWidth());
    const QRect room(0, 0, text.width(), QWIDGETSIZE_MAX);
    EXPECT_GE(text.height(), text.fontMetrics().boundingRect(room, Qt::TextWordWrap, text.text()).height());
    EXPECT_LE(text.geometry().bottom(), button(resultButtons().first()).geometry().top());
}

TEST_F(AlertTest, theTextsAreBesideTheIconWithWideButtons)
{
    show(alertWithButtons({QStringLiteral("A button with a text much longer than the message"),
        QStringLiteral("Another button with a long text")}));
    const QRect icon = label("alertIcon").geometry();
    const QRect text = label("alertMessage").geometry();
    EXPECT_GT(text.left(), icon.right());
    EXPECT_LT(text.left(), icon.left() + 2 * label("alertIcon").sizeHint().width());
    EXPECT_EQ(text.top(), icon.top());
}

TEST_F(AlertTest, hasTheAccessibleRoleOfAnAlertAndBothTexts)
{
    Alert alert = alertWithButtons(modeButtons());
    alert.setMessageText(QStringLiteral("First line.\nSecond line?"));
    alert.setInformativeText(QStringLiteral("\nContact : someone@example.org\n\n"));
    show(alert);
    const QAccessibleInterface* access = QAccessible::queryAccessibleInterface(m_box);
    EXPECT_EQ(access->role(), QAccessible::AlertMessage);
    EXPECT_EQ(access->text(QAccessible::Name), QStringLiteral("First line.\nSecond line?"));
    EXPECT_EQ(access->text(QAccessible::Description), QStringLiteral("Contact : someone@example.org"));
    EXPECT_EQ(label("alertIcon").accessibleName(), QStringLiteral("Warning"));
    for (const QString& text : modeButtons()) {
        access = QAccessible::queryAccessibleInterface(&button(text));
        EXPECT_EQ(access->role(), QAccessible::PushButton);
        EXPECT_EQ(access->text(QAccessible::Name), text);
    }
}

TEST_F(AlertTest, isAWarningByDefaultAndShowsTheIconOfItsStyle)
{
    Alert alert = alertWithButtons({});
    show(alert);
    EXPECT_EQ(m_box->alertStyle(), Alert::Style::Warning);
    realKeys("Return");
    EXPECT_TRUE(waitUntil([this] { return m_box.isNull(); }));
    alert.setStyle(Alert::Style::Informational);
    show(alert);
    EXPECT_EQ(m_box->alertStyle(), Alert::Style::Informational);
    EXPECT_EQ(label("alertIcon").accessibleName(), QStringLiteral("Information"));
    EXPECT_FALSE(label("alertIcon").pixmap(Qt::ReturnByValue).isNull());
}

TEST_F(AlertTest, offersToBeClosedByTheWindowManager)
{
    show(alertWithButtons(modeButtons()));
    EXPECT_TRUE(m_box->windowFlags().testFlag(Qt::WindowCloseButtonHint));
}

/// The button order of a desktop.
class ButtonLayoutStyle : public QProxyStyle
{
public:
    explicit ButtonLayoutStyle(QDialogButtonBox::ButtonLayout layout)
        : m_layout(layout)
    {
    }

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
        QStyleHintReturn* returnData) const override
    {
        return hint == SH_DialogButtonLayout ? m_layout
                                             : QProxyStyle::styleHint(hint, option, widget, returnData);
    }

private:
    QDialogButtonBox::ButtonLayout m_layout;
};

TEST_F(AlertTest, theOrderOfItsButtonsIsTheSameOnEveryDesktop)
{
    const QString usual = QApplication::style()->name();
    for (const auto layout : {QDialogButtonBox::WinLayout, QDialogButtonBox::MacLayout,
             QDialogButtonBox::KdeLayout, QDialogButtonBox::GnomeLayout}) {
        SCOPED_TRACE(layout);
        QApplication::setStyle(new ButtonLayoutStyle(layout));
        show(alertWithButtons(resultButtons()));
        EXPECT_EQ(shownButtons(), resultButtons());
        realClick(button(resultButtons().last()));
        EXPECT_TRUE(waitUntil([this] { return m_box.isNull(); }));
    }
    QApplication::setStyle(usual);
    EXPECT_EQ(m_responses, (std::vector{1002, 1002, 1002, 1002}));
}

struct Press {
    const char* name;
    QStringList buttons;
    const char* input; // a key, the text of a button to click, or "close" for a request to close
    int response;
};

void PrintTo(const Press& press, std::ostream* stream)
{
    *stream << press.name;
}

class AlertAnswerTest : public AlertTest, public testing::WithParamInterface<Press>
{
public:
    static QStringList modes() { return modeButtons(); }
    static QStringList results() { return resultButtons(); }
};

TEST_P(AlertAnswerTest, isThePlaceOfTheButtonInItsOrder)
{
    const Press& press = GetParam();
    const QString input = QString::fromLatin1(press.input);
    show(alertWithButtons(press.buttons));
    EXPECT_EQ(shownButtons(), press.buttons.isEmpty() ? QStringList(QStringLiteral("OK")) : press.buttons);
    if (press.buttons.contains(input))
        realClick(button(input));
    else if (input == QStringLiteral("close"))
        m_box->windowHandle()->close();
    else
        realKeys(press.input);
    EXPECT_TRUE(waitUntil([this] { return m_box.isNull(); })) << "the dialog is not destroyed";
    EXPECT_EQ(m_responses, std::vector{press.response});
}

INSTANTIATE_TEST_SUITE_P(input, AlertAnswerTest,
    testing::Values(Press{"aClickOnTheFirst", AlertAnswerTest::results(), "OK", Alert::firstButtonResponse},
        Press{"aClickOnTheSecond", AlertAnswerTest::results(), "Show in Finder", Alert::secondButtonResponse},
        Press{"aClickOnTheThird", AlertAnswerTest::results(), "Launch Video in QuickTime",
            Alert::thirdButtonResponse},
        Press{"aClickOnTheSecondOfTwo", AlertAnswerTest::modes(), "Transcode", 1001},
        Press{"returnWithTwoButtons", AlertAnswerTest::modes(), "Return", 1000},
        Press{"returnWithThreeButtons", AlertAnswerTest::results(), "Return", 1000},
        Press{"returnWithTheButtonOfAnAlertWithoutButtons", {}, "Return", 1000},
        Press{"escapeWithOkAsTheFirst", AlertAnswerTest::results(), "Escape", 1000},
        Press{"escapeWithOkAsTheSecond", {QStringLiteral("Reveal"), QStringLiteral("OK")}, "Escape", 1001},
        Press{"escapeWithOneButton", {QStringLiteral("Continue")}, "Escape", 1000},
        Press{"escapeWithoutAnOkButton", AlertAnswerTest::modes(), "Escape", Alert::dismissedResponse},
        Press{"aRequestToCloseWithOk", AlertAnswerTest::results(), "close", 1000},
        Press{"aRequestToCloseWithOneButton", {QStringLiteral("Continue")}, "close", 1000},
        Press{
            "aRequestToCloseWithoutAnOkButton", AlertAnswerTest::modes(), "close", Alert::dismissedResponse}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(AlertTest, theResponsesStartAtAThousandAndADismissalHasNone)
{
    EXPECT_LT(Alert::dismissedResponse, Alert::firstButtonResponse);
    EXPECT_EQ(Alert::firstButtonResponse, 1000);
    EXPECT_EQ(Alert::secondButtonResponse, 1001);
    EXPECT_EQ(Alert::thirdButtonResponse, 1002);
}

TEST_F(AlertTest, blocksItsWindowUntilItIsAnswered)
{
    show(alertWithButtons({}));
    EXPECT_EQ(m_box->windowModality(), Qt::WindowModal);
    EXPECT_EQ(m_box->parentWidget(), &m_window);
    realClick(m_window.button());
    EXPECT_EQ(m_window.clicks(), 0);
    realClick(button(QStringLiteral("OK")));
    realClick(m_window.button());
    EXPECT_EQ(m_window.clicks(), 1);
}

TEST_F(AlertTest, needsNoHandler)
{
    alertWithButtons({}).beginSheetModal(m_window, m_sheets);
    const QPointer box = m_window.findChild<AlertDialog*>();
    ASSERT_FALSE(box.isNull());
    waitForKeyboard(*box);
    realKeys("Return");
    EXPECT_TRUE(waitUntil([&] { return box.isNull(); }));
}

TEST_F(AlertTest, waitsForTheSheetBeforeIt)
{
    Alert first = alertWithButtons({});
    show(first);
    alertWithButtons(modeButtons()).beginSheetModal(m_window, m_sheets, [this](int response) {
        m_responses.push_back(response);
    });
    const auto boxes = m_window.findChildren<AlertDialog*>();
    ASSERT_EQ(boxes.size(), 2);
    EXPECT_FALSE(boxes.last()->isVisible());
    realKeys("Return");
    EXPECT_TRUE(boxes.last()->isVisible());
}

TEST_F(AlertTest, isNotAnsweredWhenItIsDestroyed)
{
    show(alertWithButtons(modeButtons()));
    delete m_box.data();
    EXPECT_TRUE(m_responses.empty()) << "no button was pressed";
    EXPECT_FALSE(m_sheets.isBusy());
}

} // namespace tarnwell::test
