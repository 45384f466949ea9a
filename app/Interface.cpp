// SPDX-License-Identifier: MIT
#include "app/Interface.h"

#include "app/AppDelegate.h"
#include "desktop/InputGate.h"
#include "desktop/SymbolIcon.h"

#include "ui_HelpSheet.h"
#include "ui_MainWindow.h"
#include "ui_ProgressSheet.h"

#include <QCoreApplication>
#include <QScreen>

namespace tarnwell
{

namespace
{

// The interface file says which symbol an item bears; how it is drawn follows the palette.
void giveSymbols(const QMainWindow& window)
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
    setUpWindow();
    setUpToolBar();
    setUpSheets();
}

Interface::~Interface() = default;

void Interface::setUpWindow()
{
    m_main->setupUi(&m_window);
    giveSymbols(m_window);
    m_window.setWindowIcon(QIcon(QStringLiteral(":/icon/org.tarnwell.Tarnwell.svg")));
    m_window.resize(m_window.size().boundedTo(m_window.screen()->availableSize()));
}

void Interface::setUpToolBar()
{
    auto* stretch = new QWidget(m_main->toolBar);
    stretch->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    m_main->toolBar->insertWidget(m_main->helpBTN, stretch);
    // A large font widens the toolbar; none of its items may fall off the end.
    m_window.setMinimumWidth(std::max(m_window.minimumWidth(), m_main->toolBar->sizeHint().width()));
}

void Interface::setUpSheets()
{
    m_progress->setupUi(&m_progressWindow);
    m_progressWindow.setEscapeButton(m_progress->progressCancel);
    m_help->setupUi(&m_helpWindow);
    m_helpWindow.setEscapeButton(m_help->helpOK);
    // A window blocked by its sheet takes no shortcuts, but leaving must be possible during a long export.
    m_sheets.addActionOfEverySheet(m_main->quitMenuBTN);
}

Outlets Interface::outlets()
{
    Outlets outlets;
    outlets.window = &m_window;
    outlets.sheets = &m_sheets;
    outlets.posterFrameIMGV = m_main->posterFrameIMGV;
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
    return !m_sheets.isBusy() && !InputGate::isClosed();
}

void Interface::connectActions(AppDelegate& delegate)
{
    const auto tell = [this, &delegate](QAction* action, void (AppDelegate::*entry)()) {
        QObject::connect(action, &QAction::triggered, &delegate, [this, &delegate, entry] {
            if (takesActions())
                (delegate.*entry)();
        });
    };
    tell(m_main->openMenuBTN, &AppDelegate::openMenuBTNClicked);
    tell(m_main->openToolBarBTN, &AppDelegate::openToolBarBTNClicked);
    tell(m_main->saveMenuBTN, &AppDelegate::saveMenuBTNClicked);
    tell(m_main->saveToolBarBTN, &AppDelegate::saveToolBarBTNClicked);
    tell(m_main->rotateLeftBTN, &AppDelegate::leftRotateBTNClicked);
    tell(m_main->rotateRightBTN, &AppDelegate::rightRotateBTNClicked);
    tell(m_main->resetBTN, &AppDelegate::resetBTNClicked);
    tell(m_main->flipVerticallyBTN, &AppDelegate::vFlip);
    tell(m_main->flipHorizontallyBTN, &AppDelegate::hFlip);
    tell(m_main->helpMenuBTN, &AppDelegate::helpBTNClicked);
    tell(m_main->helpBTN, &AppDelegate::helpBTNClicked);
    QObject::connect(m_progress->progressCancel, &QPushButton::clicked, &delegate,
        &AppDelegate::closeBTNInsideProgressWindowClicked);
    QObject::connect(m_help->helpOK, &QPushButton::clicked, &delegate, &AppDelegate::okBTNInsideHelpWindowClicked);
    // Not QCoreApplication::quit: it asks every window first, and a progress sheet does not let itself be closed.
    QObject::connect(m_main->quitMenuBTN, &QAction::triggered, [] { QCoreApplication::exit(); });
}

} // namespace tarnwell
