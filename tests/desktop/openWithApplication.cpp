// SPDX-License-Identifier: MIT
//
// openWithApplication NAME: opens the file, whose path is read from the first line of standard input, with
// the application of that name. GIO reads the folders of applications once per process, so each test runs
// this program with folders of its own. Prints the addresses that go to the file's default application
// instead, then "done", and ends when standard input is closed.
#include "desktop/Workspace.h"
#include "tests/support/EventCounter.h"

#include <QGuiApplication>

#include <iostream>
#include <limits>
#include <string>

int main(int argc, char* argv[])
{
    using namespace tarnwell;
    QGuiApplication::setDesktopFileName(QStringLiteral("org.tarnwell.Tarnwell"));
    const QGuiApplication application(argc, argv);
    const test::UrlCatcher defaultApplication;
    std::string path;
    std::getline(std::cin, path);
    openFileWithApplication(FileURL(path), QString::fromUtf8(argv[1]));
    for (const QUrl& url : defaultApplication.urls())
        std::cout << url.toEncoded().toStdString() << '\n';
    std::cout << "done" << std::endl;
    std::cin.ignore(std::numeric_limits<std::streamsize>::max()); // D-Bus calls leave on another thread
}
