// SPDX-License-Identifier: MIT
#include "app/Application.h"
#include "desktop/ActivationToken.h"
#include "desktop/ColorScheme.h"
#include "desktop/EventLoopWait.h"
#include "desktop/PortalDialogs.h"
#include "desktop/QuitSignals.h"
#include "desktop/SingleInstance.h"
#include "platform/Bundle.h"
#include "platform/StandardStreams.h"

#include <QApplication>

#include <cstdlib>
#include <memory>

int main(int argc, char* argv[])
{
    using namespace tarnwell;
    prepareStandardStreams();
    const ActivationToken ownToken = ActivationToken::fromEnvironment();
    QApplication::setDesktopFileName(QStringLiteral("org.tarnwell.Tarnwell"));
    selectPortalDialogs();
    const QApplication qtApplication(argc, argv);
    removePortalSelection();
    const ColorScheme colorScheme;

    std::unique_ptr<Application> application;
    SingleInstance instance([&application](const ActivationToken& token, const auto& uri) {
        if (!application)
            return;
        application->reopen();
        activate(application->interface().window(), token);
        if (uri)
            application->open(*uri);
    });
    if (instance.claim(ownToken) == SingleInstance::Role::Later)
        return 0;
    application = std::make_unique<Application>(ToolContext{Bundle::main(), waitInEventLoop});
    const QuitSignals signals([&application] { application->quit(); });
    const int status = QApplication::exec();
    application.reset();
    // The threads of a running export run until the process ends. Destructors of static objects, which exit
    // would call, could destroy what the threads use.
    std::quick_exit(status);
}
