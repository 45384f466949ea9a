// SPDX-License-Identifier: MIT
#include "app/Interface.h"

#include "app/AppDelegate.h"
#include "app/DragAndDropFileInNSImageView.h"
#include "desktop/FocusRingStyle.h"
#include "desktop/InputBlocker.h"
#include "desktop/SymbolIcon.h"
#include "ui_HelpSheet.h"
#include "ui_MainWindow.h"
#include "ui_ProgressSheet.h"

#include <QScreen>
#include <QShortcut>
#include <QStyle>
#include <QToolButton>

namespace tarnwell
{

namespace
{

// The property "symbol" in the interface file names an action's icon. The icon's colours follow the palette.
void setIcons(const QMainWindow& window)
{
    for (QAction* action : window.findChildren<QAction*>()) {
        const QString symbol = action->property("symbol").toString();
        if (!symbol.isEmpty())
            action->setIcon(symbolIcon(QStringLiteral(":/symbols/%1.svg").arg(symbol)));
    }
}

} // namespace

Interface::Interface()
    : m_progressWindow(&m_window)
    , m_helpWindow(&m_window)
    , m_sheets(m_window)
    , m_main(std::make_unique<Ui::MainWindow>())
    , m_progress(std::make_unique<Ui::ProgressSheet>())
    , m_help(std::make_unique<Ui::HelpSheet>())
{
    FocusRingStyle::install();
    setUpWindow();
    setUpToolBar();
    setUpSheets();
}

Interface::~Interface() = default;

void Interface::setUpWindow()
{
    m_main->setupUi(&m_window);
    setIcons(m_window);
    m_main->videoDetails->hide(); // until a video is open
    QObject::connect(
        m_main->posterFrameIMGV, &ImageView::emptyViewClicked, m_main->openToolBarBTN, &QAction::trigger);
    // Qt opens the menu bar with the Alt key alone, which some desktops do not pass on to programs.
    const auto* toMenus = new QShortcut(Qt::Key_F10, &m_window);
    QObject::connect(toMenus, &QShortcut::activated, m_main->menuBar,
        [this] { m_main->menuBar->setActiveAction(m_main->fileMenu->menuAction()); });
    m_window.setWindowIcon(QIcon(QStringLiteral(":/icon/org.tarnwell.Tarnwell.svg")));
    // The size of the window manager's frame is not known before the window is shown; the style's metrics are
    // an estimate.
    const int title = m_window.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &m_window);
    const int border
        = 2 * m_window.style()->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth, nullptr, &m_window);
    const QSize room = m_window.screen()->availableSize() - QSize(border, title + border);
    m_window.resize(m_window.size().boundedTo(room));
}

void Interface::setUpToolBar()
{
    auto* stretch = new QWidget(m_main->toolBar);
    stretch->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    m_main->toolBar->insertWidget(m_main->helpBTN, stretch);
    // A click does not move the keyboard focus.
    for (QToolButton* button : m_main->toolBar->findChildren<QToolButton*>())
        button->setFocusPolicy(Qt::TabFocus);
    // With a large font the toolbar can need more than the window's minimum width.
    m_window.setMinimumWidth(std::max(m_window.minimumWidth(), m_main->toolBar->sizeHint().width()));
}

void Interface::setUpSheets()
{
    m_progress->setupUi(&m_progressWindow);
    m_progressWindow.setEscapeButton(m_progress->progressCancel);
    m_progressWindow.setDescribingLabel(m_progress->progressTitle);
    m_help->setupUi(&m_helpWindow);
    m_help->helpVersion->setText(QStringLiteral("Version " TARNWELL_VERSION));
    m_helpWindow.setEscapeButton(m_help->helpOK);
    // A window that is blocked by its sheet gets no shortcuts; Quit must work during an export.
    m_sheets.addActionOfEverySheet(m_main->quitMenuBTN);
}

Outlets Interface::outlets()
{
    Outlets outlets;
    outlets.window = &m_window;
    outlets.sheets = &m_sheets;
    outlets.posterFrameIMGV = m_main->posterFrameIMGV;
    outlets.videoDetails = m_main->videoDetails;
    outlets.saveToolBarBTN = m_main->saveToolBarBTN;
    outlets.rotateLeftBTN = m_main->rotateLeftBTN;
    outlets.rotateRightBTN = m_main->rotateRightBTN;
    outlets.resetBTN = m_main->resetBTN;
    outlets.flipVerticallyBTN = m_main->flipVerticallyBTN;
    outlets.flipHorizontallyBTN = m_main->flipHorizontallyBTN;
    outlets.progressWindow = &m_progressWindow;
    outlets.progressTitle = m_progress->progressTitle;
    outlets.progressBar = m_progress->progressBar;
    outlets.progressCancel = m_progress->progressCancel;
    outlets.helpWindow = &m_helpWindow;
    return outlets;
}

bool Interface::takesActions() const
{
    return !m_sheets.isBusy() && !InputBlocker::isActive();
}

void Interface::connectActions(AppDelegate& delegate)
{
    const auto connectAction = [this, &delegate](QAction* action, void (AppDelegate::*entry)()) {
        QObject::connect(action, &QAction::triggered, &delegate, [this, &delegate, entry] {
            if (takesActions())
                (delegate.*entry)();
        });
    };
    connectAction(m_main->openMenuBTN, &AppDelegate::openMenuBTNClicked);
    connectAction(m_main->openToolBarBTN, &AppDelegate::openToolBarBTNClicked);
    connectAction(m_main->saveMenuBTN, &AppDelegate::saveMenuBTNClicked);
    connectAction(m_main->saveToolBarBTN, &AppDelegate::saveToolBarBTNClicked);
    connectAction(m_main->rotateLeftBTN, &AppDelegate::leftRotateBTNClicked);
    connectAction(m_main->rotateRightBTN, &AppDelegate::rightRotateBTNClicked);
    connectAction(m_main->resetBTN, &AppDelegate::resetBTNClicked);
    connectAction(m_main->flipVerticallyBTN, &AppDelegate::vFlip);
    connectAction(m_main->flipHorizontallyBTN, &AppDelegate::hFlip);
    connectAction(m_main->helpMenuBTN, &AppDelegate::helpBTNClicked);
    connectAction(m_main->helpBTN, &AppDelegate::helpBTNClicked);
    QObject::connect(m_main->posterFrameIMGV, &DragAndDropFileInNSImageView::transferFailed, &delegate,
        &AppDelegate::dropFailed);
    // Assistive programs can press a hidden button.
    QObject::connect(m_progress->progressCancel, &QPushButton::clicked, &delegate, [this, &delegate] {
        if (m_progress->progressCancel->isVisible())
            delegate.closeBTNInsideProgressWindowClicked();
    });
    QObject::connect(
        m_help->helpOK, &QPushButton::clicked, &delegate, &AppDelegate::okBTNInsideHelpWindowClicked);
    QObject::connect(m_main->quitMenuBTN, &QAction::triggered, &InputBlocker::exitUnlessActive);
}

} // namespace tarnwell
