// SPDX-License-Identifier: MIT
#include "tests/support/FakeToolsTest.h"

#include "desktop/PathText.h"
#include "tests/support/Files.h"

#include <QPainter>

#include <set>

namespace tarnwell::test
{

FakeToolsTest::FakeToolsTest()
    : m_still(stillSize, QImage::Format_RGB32)
{
    m_still.fill(Qt::gray);
    QPainter painter(&m_still);
    painter.fillRect(QRect(0, 0, 8, 8), Qt::red);
    painter.fillRect(QRect(stillSize.width() - 8, 0, 8, 8), Qt::green);
    painter.fillRect(QRect(0, stillSize.height() - 8, 8, 8), Qt::blue);
    painter.end();
    const QString path = textOfPath(folder() + "still.jpg");
    EXPECT_TRUE(m_still.save(path));
    m_still = QImage(path); // reads the file back, because JPEG changes colours
    m_tools.setSniffer(sniffing(reportOf({})));
    m_tools.setCreator(stillScript());
}

std::string FakeToolsTest::sniffing(const std::string& report)
{
    writeFile(folder() + "report.json", report);
    return "record " + folder() + "probed\nprint-file " + folder() + "report.json\n";
}

std::string FakeToolsTest::stillScript() const
{
    return "copy " + folder() + "still.jpg\n";
}

void FakeToolsTest::openVideo()
{
    writeFile(folder() + "clip.mp4", "bytes");
    ASSERT_TRUE(drop(folder() + "clip.mp4"));
    ASSERT_TRUE(action("saveToolBarBTN").isEnabled());
    ASSERT_FALSE(shownPicture().isNull());
    waitForKeyboard(window());
}

int FakeToolsTest::coloursIn(const QImage& picture)
{
    constexpr std::size_t enough = 10;
    std::set<QRgb> colours;
    for (int y = 0; y < picture.height() && colours.size() < enough; ++y) {
        for (int x = 0; x < picture.width() && colours.size() < enough; ++x)
            colours.insert(picture.pixel(x, y));
    }
    return static_cast<int>(colours.size());
}

} // namespace tarnwell::test
