// SPDX-License-Identifier: MIT
#include "tests/support/DragSource.h"

#include "tests/support/Folders.h"
#include "tests/support/RealInput.h"
#include "tests/support/Screen.h"
#include "tests/support/Waiting.h"

#include <QCoreApplication>
#include <QThread>

#include <gtest/gtest.h>

namespace tarnwell::test
{

DragSource::DragSource(const std::string& uriList)
{
    m_process.start(QStringLiteral(TARNWELL_BUILD_FOLDER "/tests/dragSource"),
        {QStringLiteral("text/uri-list"), QString::fromStdString(uriList)});
    waitForLine(QStringLiteral("ready"));
}

DragSource::~DragSource()
{
    m_process.kill();
    EXPECT_TRUE(waitForEnd(m_process));
}

void DragSource::dragTo(QPoint screenPosition)
{
    realDrag(place.center(), screenPosition);
}

void DragSource::moveTo(QPoint screenPosition)
{
    realMove(screenPosition);
}

void DragSource::waitUntilAccepted()
{
    waitForLine(QStringLiteral("action 1"));
}

bool DragSource::drop()
{
    realRelease();
    waitForLine(QStringLiteral("end"));
    return lineThatBegins(QStringLiteral("end")) == QStringLiteral("end 1");
}

void DragSource::die()
{
    m_process.kill();
    EXPECT_TRUE(waitForEnd(m_process));
    realRelease();
}

void DragSource::waitForLine(const QString& beginning)
{
    const auto isThere = [&] { return !lineThatBegins(beginning).isEmpty(); };
    const std::string awaited = "the line “" + beginning.toStdString() + "” of the drag source";
    if (QThread::currentThread() == QCoreApplication::instance()->thread()) {
        waitFor(awaited, isThere);
        return;
    }
    constexpr std::chrono::milliseconds limit = longestWait;
    while (!isThere()) {
        if (!m_process.waitForReadyRead(static_cast<int>(limit.count()))) {
            ADD_FAILURE() << awaited << " did not come; screen: " << savePictureOfScreen();
            return;
        }
    }
}

QString DragSource::lineThatBegins(const QString& beginning)
{
    while (m_process.canReadLine())
        m_lines.append(QString::fromUtf8(m_process.readLine().trimmed()));
    for (const QString& line : m_lines) {
        if (line.startsWith(beginning))
            return line;
    }
    return {};
}

} // namespace tarnwell::test
