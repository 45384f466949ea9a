// SPDX-License-Identifier: MIT
#include "tests/support/DragSource.h"

#include "tests/support/Folders.h"
#include "tests/support/RealInput.h"
#include "tests/support/WindowTest.h"

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
    m_process.waitForFinished();
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
    m_process.waitForFinished();
    realRelease();
}

void DragSource::waitForLine(const QString& beginning)
{
    if (QThread::currentThread() == QCoreApplication::instance()->thread()) {
        EXPECT_TRUE(waitUntil([&] { return !lineThatBegins(beginning).isEmpty(); }))
            << beginning.toStdString();
        return;
    }
    while (lineThatBegins(beginning).isEmpty()) {
        if (!m_process.waitForReadyRead(60000)) {
            ADD_FAILURE() << "the source did not say: " << beginning.toStdString();
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
