// SPDX-License-Identifier: MIT
#include "desktop/ActivationToken.h"

#include "desktop/Sheet.h"
#include "desktop/X11Activation.h"
#include "tests/desktop/ParentWindow.h"
#include "tests/desktop/RootWindow.h"

#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include <tuple>

namespace tarnwell::test
{

namespace
{

QString startupIdAt(std::uint32_t time)
{
    return QStringLiteral("launcher/7-host_TIME%1").arg(time);
}

} // namespace

TEST(StartupIdTest, endsWithTheTimeOfTheUsersAction)
{
    const std::tuple<const char*, const char*, std::optional<std::uint32_t>> cases[] = {
        {"usual", "shell-7-host_TIME12345", 12345},
        {"largest", "_TIME4294967295", 4294967295U},
        {"the last one counts", "a_TIME1_TIME2", 2},
        {"empty", "", std::nullopt},
        {"no time", "shell-7-host", std::nullopt},
        {"no number", "a_TIME", std::nullopt},
        {"more than a number", "a_TIME12b", std::nullopt},
        {"too large", "a_TIME4294967296", std::nullopt},
        {"below zero", "a_TIME-5", std::nullopt},
        {"zero, which would be any time", "a_TIME0", std::nullopt},
    };
    for (const auto& [name, id, time] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(userTimeOf(QString::fromLatin1(id)), time);
    }
}

TEST(ActivationTokenTest, isWhatTheProcessWasStartedWith)
{
    EXPECT_EQ(ActivationToken::fromEnvironment(), ActivationToken());
    qputenv("XDG_ACTIVATION_TOKEN", "abc");
    qputenv("DESKTOP_STARTUP_ID", "a_TIME5");
    const ActivationToken token = ActivationToken::fromEnvironment();
    qunsetenv("XDG_ACTIVATION_TOKEN");
    qunsetenv("DESKTOP_STARTUP_ID");
    EXPECT_EQ(token, (ActivationToken{QStringLiteral("abc"), QStringLiteral("a_TIME5")}));
}

TEST(ActivationTokenTest, survivesTheWayOverTheBus)
{
    for (const ActivationToken& token : {ActivationToken{}, ActivationToken{QStringLiteral("abc"), {}},
             ActivationToken{{}, QStringLiteral("a_TIME5")},
             ActivationToken{QStringLiteral("abc"), QStringLiteral("a_TIME5")}})
        EXPECT_EQ(ActivationToken::fromPlatformData(token.platformData()), token);
    EXPECT_TRUE(ActivationToken().platformData().isEmpty());
}

/// A window of the program behind another one that the user works with.
class ActivationTest : public testing::Test
{
protected:
    ActivationTest()
    {
        m_other.setGeometry(m_window.geometry());
        m_other.show();
        waitForKeyboard(m_other);
        realClick(m_other, {5, 5});
        m_earlierRequests = m_desktop.activations().size();
    }

    std::vector<RootWindow::Activation> requests()
    {
        const auto all = m_desktop.activations();
        return {all.begin() + static_cast<std::ptrdiff_t>(m_earlierRequests), all.end()};
    }

    RootWindow m_desktop;
    ParentWindow m_window;
    QWidget m_other;

private:
    std::size_t m_earlierRequests = 0;
};

TEST_F(ActivationTest, asksForTheKeyboardWithTheTimeOfTheUsersAction)
{
    const std::uint32_t time = m_desktop.time();
    activate(m_window, {.startupId = startupIdAt(time)});
    ASSERT_TRUE(waitUntil([this] { return !requests().empty(); }));
    const auto id = static_cast<xcb_window_t>(m_window.winId());
    EXPECT_EQ(requests(), (std::vector{RootWindow::Activation{id, 1, time}}));
    EXPECT_TRUE(waitUntil([this] { return hasKeyboard(m_window); }));
    EXPECT_TRUE(isOnTop(m_window));
}

TEST_F(ActivationTest, takesTheTimeFromTheTokenWhereThereIsNoStartupId)
{
    activate(m_window, {.token = startupIdAt(m_desktop.time())});
    EXPECT_TRUE(waitUntil([this] { return hasKeyboard(m_window); }));
}

TEST_F(ActivationTest, endsTheDesktopsNoticeOfTheStart)
{
    activate(m_window, {.startupId = QStringLiteral("a long id of a launcher, with \"marks\" and \\_TIME1")});
    activate(m_window, {.startupId = QStringLiteral("id")});
    EXPECT_TRUE(waitUntil([this] { return m_desktop.startupMessages().size() == 2; }));
    EXPECT_EQ(m_desktop.startupMessages(),
        (std::vector<std::string>{
            R"(remove: ID="a long id of a launcher, with \"marks\" and \\_TIME1")", R"(remove: ID="id")"}));
}

TEST_F(ActivationTest, withoutATokenOrATimeNothingIsAskedFor)
{
    activate(m_window, {});
    EXPECT_TRUE(m_desktop.startupMessages().empty());
    activate(m_window, {.startupId = QStringLiteral("no time")});
    EXPECT_TRUE(waitUntil([this] { return !m_desktop.startupMessages().empty(); }));
    EXPECT_TRUE(requests().empty());
    EXPECT_TRUE(hasKeyboard(m_other));
}

TEST_F(ActivationTest, theSheetOfABlockedWindowGetsTheKeyboard)
{
    Sheet sheet(&m_window);
    QPushButton button(QStringLiteral("Cancel"), &sheet);
    sheet.open();
    waitForKeyboard(sheet);
    m_other.raise();
    waitForKeyboard(m_other);
    activate(m_window, {.startupId = startupIdAt(m_desktop.time())});
    EXPECT_TRUE(waitUntil([&sheet] { return hasKeyboard(sheet); }));
}

TEST_F(ActivationTest, aWindowThatWasNeverShownIsLeftAlone)
{
    QWidget hidden;
    activate(hidden, {.startupId = startupIdAt(m_desktop.time())});
    EXPECT_TRUE(m_desktop.startupMessages().empty());
    EXPECT_TRUE(requests().empty());
}

} // namespace tarnwell::test
