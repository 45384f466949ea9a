// SPDX-License-Identifier: MIT
// Which file dialogs the built program shows on which desktop. Debian's themes for GTK 3 and for the portal
// are installed, those of KDE and LXQt are not.
#include "tests/desktop/FakePortal.h"
#include "tests/support/EnvironmentValue.h"
#include "tests/support/ExternalProgram.h"

#include <optional>

namespace tarnwell::test
{

class PortalDialogsTest : public testing::Test
{
protected:
    /// The program opens a panel of its own process, not one of the portal.
    void expectOwnPanel()
    {
        m_program.emplace();
        m_program->waitForWindow("Tarnwell");
        m_program->keysUntilWindow("ctrl+o", "Open Video");
    }

    void expectPanelOf(FakePortal& portal)
    {
        m_program.emplace();
        m_program->waitForWindow("Tarnwell");
        m_program->keys("ctrl+o");
        portal.waitForRequests(1);
    }

private:
    std::optional<ExternalProgram> m_program;
};

struct DesktopName {
    const char* description;
    const char* names; // XDG_CURRENT_DESKTOP
};

void PrintTo(const DesktopName& desktop, std::ostream* stream)
{
    *stream << desktop.description;
}

class DesktopWithoutThemeTest : public PortalDialogsTest, public testing::WithParamInterface<DesktopName>
{
};

TEST_P(DesktopWithoutThemeTest, getsThePortalsDialogs)
{
    FakePortal portal;
    const EnvironmentValue desktop("XDG_CURRENT_DESKTOP", GetParam().names);
    expectPanelOf(portal);
}

INSTANTIATE_TEST_SUITE_P(named, DesktopWithoutThemeTest,
    testing::Values(DesktopName{"gnomeWhoseDarkStyleGtk3DoesNotFollow", "ubuntu:GNOME"},
        DesktopName{"kde", "KDE"}, DesktopName{"aWaylandCompositor", "sway"}, DesktopName{"nothing", ""}),
    [](const auto& row) { return std::string(row.param.description); });

TEST_F(PortalDialogsTest, aDesktopWithAThemeKeepsItsOwnDialogs)
{
    for (const char* names : {"XFCE", "X-Cinnamon"}) {
        SCOPED_TRACE(names);
        const FakePortal portal;
        const EnvironmentValue desktop("XDG_CURRENT_DESKTOP", names);
        expectOwnPanel();
        EXPECT_EQ(portal.requestCount(), 0);
    }
}

TEST_F(PortalDialogsTest, aThemeThatTheUserHasSelectedIsKept)
{
    const FakePortal portal;
    const EnvironmentValue desktop("XDG_CURRENT_DESKTOP", "sway");
    const EnvironmentValue theme("QT_QPA_PLATFORMTHEME", "gtk3");
    expectOwnPanel();
    EXPECT_EQ(portal.requestCount(), 0);
}

TEST_F(PortalDialogsTest, withoutAPortalAnotherDialogIsShown)
{
    for (const char* names : {"GNOME", "sway"}) {
        SCOPED_TRACE(names);
        const EnvironmentValue desktop("XDG_CURRENT_DESKTOP", names);
        expectOwnPanel();
    }
}

TEST_F(PortalDialogsTest, aPortalWithoutFileDialogsOrWithoutAnAnswerIsNotUsed)
{
    for (const auto& answer : {BusService::refusal, BusService::silence}) {
        const BusService portal(QStringLiteral("org.freedesktop.portal.Desktop"),
            QStringLiteral("/org/freedesktop/portal/desktop"), answer);
        const EnvironmentValue desktop("XDG_CURRENT_DESKTOP", "sway");
        expectOwnPanel();
        EXPECT_FALSE(portal.calls().isEmpty());
    }
}

} // namespace tarnwell::test
