// SPDX-License-Identifier: MIT
// Shows every state of the window in light, dark and high-contrast colours, checks that nothing is cut off,
// and saves screenshots in the folder of the first argument; the second argument is a prefix of their names.
#include "desktop/ElidedLabel.h"
#include "desktop/PathText.h"
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"
#include "tests/support/Screen.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QLabel>
#include <QLinearGradient>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPalette>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QStyleFactory>
#include <QToolBar>
#include <QToolButton>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <set>

namespace tarnwell::test
{

namespace
{

/// The colours of a palette.
struct Theme {
    const char* name;
    QColor window;
    QColor text;
    QColor base;
    QColor button;
    QColor highlight;
    QColor disabled;
};

const Theme themes[] = {
    {"light", "#eff0f1", "#232629", "#ffffff", "#fcfcfc", "#3daee9", "#a0a1a2"},
    {"dark", "#2a2e32", "#fcfcfc", "#1b1e20", "#31363b", "#3daee9", "#6e7175"},
    {"contrast", "#000000", "#ffffff", "#000000", "#000000", "#ffff00", "#00ff00"},
};

QPalette paletteOf(const Theme& theme)
{
    QPalette palette(theme.text, theme.button, theme.window.lighter(130), theme.window.darker(140),
        theme.window.darker(115), theme.text, theme.base);
    palette.setColor(QPalette::Window, theme.window);
    palette.setColor(QPalette::WindowText, theme.text);
    palette.setColor(QPalette::ButtonText, theme.text);
    palette.setColor(QPalette::Text, theme.text);
    palette.setColor(QPalette::ToolTipBase, theme.base);
    palette.setColor(QPalette::ToolTipText, theme.text);
    palette.setColor(QPalette::Highlight, theme.highlight);
    palette.setColor(QPalette::HighlightedText, theme.window.lightnessF() > 0.5F ? Qt::white : Qt::black);
    for (const auto role : {QPalette::WindowText, QPalette::ButtonText, QPalette::Text})
        palette.setColor(QPalette::Disabled, role, theme.disabled);
    return palette;
}

/// The contrast ratio as defined by WCAG, 1 to 21.
double contrast(const QColor& one, const QColor& other)
{
    const auto luminance = [](const QColor& colour) {
        const auto linear = [](double value) {
            return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
            + 0.0722 * linear(colour.blueF());
    };
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

/// The highest contrast ratio of any pixel to the pixel in the top left corner.
double strongestContrast(const QImage& picture)
{
    std::set<QRgb> colours;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            colours.insert(picture.pixel(x, y));
    }
    double strongest = 1;
    for (const QRgb colour : colours)
        strongest = std::max(strongest, contrast(colour, picture.pixel(1, 1)));
    return strongest;
}

/// All hues from left to right, darker towards the bottom.
QImage scene(QSize size)
{
    QImage picture(size, QImage::Format_RGB32);
    QPainter painter(&picture);
    QLinearGradient hues(0, 0, size.width(), 0);
    constexpr int steps = 6;
    for (int step = 0; step <= steps; ++step)
        hues.setColorAt(double(step) / steps, QColor::fromHsv(step * 360 / steps % 360, 160, 255));
    painter.fillRect(picture.rect(), hues);
    QLinearGradient shadow(0, 0, 0, size.height());
    shadow.setColorAt(0, QColor(0, 0, 0, 0));
    shadow.setColorAt(1, QColor(0, 0, 0, 140));
    painter.fillRect(picture.rect(), shadow);
    return picture;
}

} // namespace

class Gallery : public FakeToolsTest, public testing::WithParamInterface<Theme>
{
protected:
    void SetUp() override
    {
        m_usualPalette = QApplication::palette();
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
        QApplication::setPalette(paletteOf(GetParam()));
        const QStringList arguments = QApplication::arguments();
        m_pictures = (arguments.size() > 2 ? pathOfText(arguments.at(1)) + "/" : folder())
            + (arguments.size() > 2 ? arguments.at(2).toStdString() + " " : "") + GetParam().name + " ";
        std::filesystem::create_directories(m_pictures.substr(0, m_pictures.rfind('/')));
    }

    void TearDown() override { QApplication::setPalette(m_usualPalette); }

    /// Saves a screenshot and checks the windows.
    void show(const std::string& what)
    {
        paintEveryWindow();
        constexpr int quality = 95; // writing a PNG file takes four times as long
        EXPECT_TRUE(
            window().screen()->grabWindow(0).save(textOfPath(m_pictures + what + ".jpg"), nullptr, quality));
        expectOnScreen();
    }

    /// No window extends beyond the screen, and no button is too narrow for its text.
    void expectOnScreen()
    {
        for (const QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->isVisible()) {
                EXPECT_TRUE(widget->screen()->availableGeometry().contains(widget->frameGeometry()))
                    << widget->objectName().toStdString() << widget->windowTitle().toStdString();
            }
        }
        for (const QAbstractButton* button : window().findChildren<QAbstractButton*>()) {
            if (button->isVisible() && !button->text().isEmpty()
                && qobject_cast<const QToolButton*>(button) == nullptr) {
                EXPECT_GE(button->width(), button->minimumSizeHint().width()) << button->text().toStdString();
            }
        }
    }

    void openPicture(QSize size)
    {
        EXPECT_TRUE(scene(size).save(textOfPath(folder() + "scene.jpg"), nullptr, 95));
        tools().setCreator("with -frames:v copy " + folder() + "scene.jpg\n");
        openVideo();
    }

    QToolButton& item(const char* name)
    {
        return *qobject_cast<QToolButton*>(find<QToolBar>("toolBar").widgetForAction(&action(name)));
    }

private:
    QPalette m_usualPalette;
    std::string m_pictures;
};

TEST_P(Gallery, theEmptyWindow)
{
    start();
    show("empty");
    for (const char* name : {"openToolBarBTN", "saveToolBarBTN", "rotateLeftBTN"}) {
        EXPECT_TRUE(item(name).isVisible()) << name;
        EXPECT_FALSE(item(name).icon().isNull()) << name;
        EXPECT_EQ(item(name).toolButtonStyle(), Qt::ToolButtonTextUnderIcon) << name;
    }
    // An enabled button has a higher contrast than a disabled one.
    EXPECT_GE(strongestContrast(item("openToolBarBTN").grab().toImage()), 4.5);
    EXPECT_GE(strongestContrast(item("openToolBarBTN").grab().toImage()),
        strongestContrast(item("saveToolBarBTN").grab().toImage()) + 1);
}

TEST_P(Gallery, picturesOfEveryShape)
{
    start();
    for (const auto& [name, size] :
        std::vector<std::pair<std::string, QSize>>{{"landscape", {1280, 720}}, {"portrait", {720, 1280}},
            {"very wide", {1920, 120}}, {"very tall", {90, 1600}}, {"tiny", {16, 12}}}) {
        openPicture(size);
        show(name);
        EXPECT_EQ(shownPicture().size(), size);
    }
    action("rotateRightBTN").trigger();
    show("turned");
}

TEST_P(Gallery, theLineBelowThePictureIsReadable)
{
    start();
    EXPECT_FALSE(find<QLabel>("videoDetails").isVisible());
    openPicture({1280, 720});
    action("rotateLeftBTN").trigger();
    action("flipHorizontallyBTN").trigger();
    show("details");
    auto& details = find<ElidedLabel>("videoDetails");
    EXPECT_TRUE(details.isVisible());
    EXPECT_EQ(details.shownText(), details.text()) << "elided";
    EXPECT_GE(strongestContrast(details.grab().toImage()), 4.5);
}

TEST_P(Gallery, theOrientationMenu)
{
    start();
    for (const char* state : {"menu, empty window", "menu"}) {
        type(QKeySequence(QStringLiteral("Alt+O")));
        ASSERT_TRUE(waitUntil([this] { return find<QMenu>("orientationMenu").isVisible(); }));
        show(state);
        QTest::keyClick(&find<QMenu>("orientationMenu"), Qt::Key_Escape);
        find<QMenuBar>("menuBar").setActiveAction(nullptr);
        openPicture({1280, 720});
    }
}

TEST_P(Gallery, thePanels)
{
    start();
    openPicture({1280, 720});
    type(QKeySequence(QStringLiteral("Ctrl+O")));
    QFileDialog* panel = shownPanel();
    show("open panel");
    QTest::keyClick(panel, Qt::Key_Escape);
    waitForKeyboard(window());
    type(QKeySequence(QStringLiteral("Ctrl+S")));
    panel = shownPanel();
    show("save panel");
    QTest::keyClick(panel, Qt::Key_Escape);
    waitForKeyboard(window());
}

TEST_P(Gallery, anExportFromTheQuestionToTheResult)
{
    start();
    openPicture({1280, 720});
    action("rotateRightBTN").trigger();
    const std::string name
        = "a rather long name of a video that was taken on a rather long journey to the north.mp4";
    const std::string goOn = folder() + "go-on";
    tools().setCreator("error time=00:00:03.00 \\n\nwait-for " + goOn + "\ncopy " + folder() + "scene.jpg\n");
    saveByPanel(folder() + name);
    AlertDialog* question = shownAlert();
    show("question");
    answer(question, "Transcode");
    ASSERT_TRUE(
        waitUntil([this] { return isProgressShown() && find<QProgressBar>("progressBar").value() > 0; }));
    show("progress");
    writeFile(goOn, "");
    ASSERT_TRUE(waitUntil([this] { return isAlertShown() && !isProgressShown(); }));
    shownAlert();
    show("result");
    answer(shownAlert(), "OK");
}

TEST_P(Gallery, refusalAndHelp)
{
    start();
    tools().setSniffer("print {}\n");
    writeFile(folder() + "clip.mp4", "bytes");
    drop(folder() + "clip.mp4");
    shownAlert();
    show("refusal");
    answer(shownAlert(), "OK");
    waitForKeyboard(window());
    type(QKeySequence(Qt::Key_F1));
    ASSERT_TRUE(waitUntil([this] { return find<QDialog>("helpWindow").isVisible(); }));
    show("help");
    QTest::keyClick(&find<QDialog>("helpWindow"), Qt::Key_Return);
    ASSERT_TRUE(waitUntil([this] { return !find<QDialog>("helpWindow").isVisible(); }));
}

INSTANTIATE_TEST_SUITE_P(Themes, Gallery, testing::ValuesIn(themes),
    [](const testing::TestParamInfo<Theme>& theme) { return std::string(theme.param.name); });

} // namespace tarnwell::test
