// SPDX-License-Identifier: MIT
#include "benchmarks/BenchWindow.h"

#include "benchmarks/Measure.h"
#include "benchmarks/PaintTimer.h"
#include "benchmarks/Report.h"
#include "desktop/PathText.h"

#include <QAction>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolBar>

namespace tarnwell::bench
{

namespace
{

constexpr const char* viewName = "posterFrameIMGV";
constexpr const char* progressName = "progressWindow";

bool isResult(const QWidget& widget)
{
    const auto* alert = qobject_cast<const AlertDialog*>(&widget);
    return alert != nullptr && !alert->text().endsWith(QStringLiteral("Available!"));
}

} // namespace

BenchWindow::BenchWindow()
{
    start();
}

BenchWindow::BenchWindow(const ToolContext& tools)
{
    start(tools);
}

double BenchWindow::open(const std::string& path)
{
    test::waitForKeyboard(window());
    type(QKeySequence(QStringLiteral("Ctrl+O")));
    PathPanel* panel = shownPanel();
    QLineEdit* field = panel->nameField();
    field->setText(textOfPath(path));
    std::optional<double> opened;
    Stopwatch stopwatch;
    const auto connection = QObject::connect(
        &find<QDialog>(progressName), &QDialog::finished, [&] { opened = stopwatch.elapsed(); });
    QTest::keyClick(field, Qt::Key_Return);
    if (!opened && panel->isVisible()) { // the completion list consumed the key
        stopwatch = {};
        QTest::keyClick(field, Qt::Key_Return);
    }
    if (!test::waitUntil([&] { return opened.has_value(); }) || isAlertShown()
        || !action("rotateLeftBTN").isEnabled())
        exitWithError(path + " could not be opened");
    QObject::disconnect(connection);
    return *opened;
}

double BenchWindow::click(const char* actionName)
{
    QWidget* button = find<QToolBar>("toolBar").widgetForAction(&action(actionName));
    const QWidget& view = find<QWidget>(viewName);
    PaintTimer watch([&view](const QWidget& widget) { return &widget == &view; });
    QTest::mouseClick(button, Qt::LeftButton);
    return watch.wait();
}

double BenchWindow::show(const QImage& picture)
{
    auto& view = find<ImageView>(viewName);
    PaintTimer watch([&view](const QWidget& widget) { return &widget == &view; });
    view.setImage(picture);
    return watch.wait();
}

QAbstractButton* BenchWindow::buttonOfAlert(const char* text)
{
    for (QAbstractButton* button : shownAlert()->buttons()) {
        if (button->text() == QString::fromLatin1(text))
            return button;
    }
    exitWithError(std::string("the alert has no button ") + text);
}

double BenchWindow::save(const char* mode, const std::string& path)
{
    return save(
        mode, path, [] {}, [] {});
}

double BenchWindow::save(const char* mode, const std::string& path, const std::function<void()>& saving,
    const std::function<void()>& saved)
{
    test::waitForKeyboard(window());
    saveByPanel(path);
    QAbstractButton* button = buttonOfAlert(mode);
    const auto connection = QObject::connect(&find<QDialog>(progressName), &QDialog::finished, saved);
    saving();
    PaintTimer watch(isResult);
    QTest::mouseClick(button, Qt::LeftButton);
    const double elapsed = watch.wait();
    QObject::disconnect(connection);
    if (!shownAlert()->text().startsWith(QStringLiteral("Video ")))
        exitWithError("saving " + path + " failed");
    answer(shownAlert(), "OK");
    return elapsed;
}

} // namespace tarnwell::bench
