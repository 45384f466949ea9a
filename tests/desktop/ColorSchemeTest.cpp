// SPDX-License-Identifier: MIT
#include "desktop/ColorScheme.h"

#include "tests/desktop/BusService.h"
#include "tests/support/Waiting.h"

#include <QApplication>
#include <QDBusVariant>
#include <QPalette>
#include <QWidget>

#include <gtest/gtest.h>

#include <atomic>

namespace tarnwell::test
{

namespace
{

constexpr uint noPreference = 0;
constexpr uint preferDark = 1;
constexpr uint preferLight = 2;

bool isDark()
{
    return QApplication::palette().color(QPalette::Window).lightness() < 128;
}

QString portalName()
{
    return QStringLiteral("org.freedesktop.portal.Desktop");
}

QString portalPath()
{
    return QStringLiteral("/org/freedesktop/portal/desktop");
}

QString appearance()
{
    return QStringLiteral("org.freedesktop.appearance");
}

QDBusVariant variantOf(const QVariant& value)
{
    return QDBusVariant(value);
}

} // namespace

class ColorSchemeTest : public testing::Test
{
protected:
    ~ColorSchemeTest() override { QApplication::setPalette(QPalette()); }

    QDBusMessage reply(const QDBusMessage& call)
    {
        if (call.member() != QStringLiteral("Read"))
            return BusService::refusal(call);
        const QVariant inner = QVariant::fromValue(variantOf(m_setting.load()));
        return call.createReply(QVariant::fromValue(variantOf(inner)));
    }

    BusService::Answer answer()
    {
        return [this](const QDBusMessage& call) { return reply(call); };
    }

    static void change(const BusService& portal, const QString& group, uint value)
    {
        QDBusMessage signal = QDBusMessage::createSignal(portalPath(),
            QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("SettingChanged"));
        signal << group << QStringLiteral("color-scheme") << QVariant::fromValue(variantOf(value));
        portal.send(signal);
    }

    std::atomic<uint> m_setting = noPreference;
};

class ColorSchemePortalTest : public ColorSchemeTest
{
protected:
    BusService m_portal{portalName(), portalPath(), answer()};
};

// The first test: QtDBus connects some slots only after a call in this process has registered their types.
TEST_F(ColorSchemePortalTest, aChangeIsFollowedLive)
{
    QWidget window;
    window.show();
    const ColorScheme scheme;
    const QPalette usual = QApplication::palette();
    change(m_portal, QStringLiteral("org.example.other"), preferDark);
    change(m_portal, appearance(), preferDark);
    waitFor("the dark palette", isDark);
    waitFor("the colours of the window",
        [&window] { return window.palette().color(QPalette::Window).lightness() < 128; });
    change(m_portal, appearance(), preferLight);
    waitFor("the light palette", [] { return !isDark(); });
    EXPECT_EQ(QApplication::palette(), usual);
}

TEST_F(ColorSchemePortalTest, aDarkDesktopGetsADarkPaletteAtOnce)
{
    ASSERT_FALSE(isDark());
    m_setting = preferDark;
    const ColorScheme scheme;
    EXPECT_TRUE(isDark());
}

TEST_F(ColorSchemePortalTest, noPreferenceAndLightKeepQtsPalette)
{
    const QPalette usual = QApplication::palette();
    for (const uint setting : {noPreference, preferLight}) {
        m_setting = setting;
        const ColorScheme scheme;
        EXPECT_EQ(QApplication::palette(), usual);
    }
}

TEST_F(ColorSchemePortalTest, thePaletteOfTheDarkChoiceIsReadable)
{
    m_setting = preferDark;
    const ColorScheme scheme;
    const QPalette palette = QApplication::palette();
    for (const auto& [text, ground] : {std::pair(QPalette::WindowText, QPalette::Window),
             std::pair(QPalette::Text, QPalette::Base), std::pair(QPalette::ButtonText, QPalette::Button)})
        EXPECT_GT(palette.color(text).lightness() - palette.color(ground).lightness(), 150);
}

TEST_F(ColorSchemeTest, aChangeIsFollowedWithoutAPortalAtTheStart)
{
    const ColorScheme scheme;
    EXPECT_FALSE(isDark());
    const BusService portal(portalName(), portalPath(), answer());
    change(portal, appearance(), preferDark);
    waitFor("the dark palette", isDark);
}

} // namespace tarnwell::test
