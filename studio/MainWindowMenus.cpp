// The window's menus and tool bar.
#include "MainWindow.h"

#include <QActionGroup>
#include <QComboBox>
#include <QDockWidget>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenuBar>
#include <QStyle>
#include <QToolBar>
#include <QTreeWidget>

#include <zelkin/CharacterTool.h>
#include <zelkin/CharacterizationModel.h>

#include "BoneTreeWidget.h"
#include "RecentFiles.h"

QAction* MainWindow::AddAction(QMenu* menu, const QString& text, const QKeySequence& keys,
                               const std::function<void()>& handler)
{
    auto* action = new QAction(text, this);
    action->setShortcut(keys);
    connect(action, &QAction::triggered, this, handler);
    if (menu != nullptr)
        menu->addAction(action);
    mOwnActions.append(action);
    return action;
}

void MainWindow::BuildFileMenu()
{
    QMenu* menu = menuBar()->addMenu(tr("&File"));
    AddAction(menu, tr("&Open Skeleton..."), QKeySequence::Open, [this] { OnOpenSkeleton(); })
        ->setIcon(style()->standardIcon(QStyle::SP_DialogOpenButton));
    AddAction(menu, tr("Open &Project..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O),
              [this] { OnOpenProject(); });
    mSaveAction = AddAction(menu, tr("&Save Project"), QKeySequence::Save, [this] { OnSaveProject(); });
    mSaveAction->setIcon(style()->standardIcon(QStyle::SP_DialogSaveButton));
    mSaveAsAction = AddAction(menu, tr("Save Project &As..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S),
                              [this] { OnSaveProjectAs(); });
    menu->addSeparator();
    AddAction(menu, tr("&Import Characterization..."), QKeySequence(Qt::CTRL | Qt::Key_I),
              [this] { OnImportCharacterization(); });
    AddAction(menu, tr("&Export Characterization..."), QKeySequence(Qt::CTRL | Qt::Key_E),
              [this] { mSession.GetHub().ShowSaveCharacterization(); });
    menu->addSeparator();
    mRecentMenu = menu->addMenu(tr("&Recent Files"));
    connect(mRecentMenu, &QMenu::aboutToShow, this, &MainWindow::FillRecentMenu);
    menu->addSeparator();
    AddAction(menu, tr("&Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q), [this] { close(); });
}

void MainWindow::FillRecentMenu()
{
    mRecentMenu->clear();
    const QStringList& files = mRecent->Files();
    for (int index = 0; index < files.size(); ++index)
    {
        const QString path = files[index];
        QAction* action = mRecentMenu->addAction(tr("&%1 %2").arg(index + 1).arg(QFileInfo(path).fileName()));
        action->setToolTip(path);
        action->setStatusTip(path);
        connect(action, &QAction::triggered, this, [this, path] { OpenFile(path); });
    }
    if (files.isEmpty())
        mRecentMenu->addAction(tr("No recent files"))->setEnabled(false);
    mRecentMenu->addSeparator();
    QAction* clear = mRecentMenu->addAction(tr("&Clear Recent Files"));
    clear->setEnabled(!files.isEmpty());
    connect(clear, &QAction::triggered, this, [this] { mRecent->Clear(); });
}

void MainWindow::BuildEditMenu()
{
    QMenu* menu = menuBar()->addMenu(tr("&Edit"));
    mUndoAction = AddAction(menu, tr("&Undo"), QKeySequence::Undo, [this] { OnUndo(); });
    mUndoAction->setIcon(style()->standardIcon(QStyle::SP_ArrowBack));
    mRedoAction = AddAction(menu, tr("&Redo"), QKeySequence::Redo, [this] { OnRedo(); });
    mRedoAction->setIcon(style()->standardIcon(QStyle::SP_ArrowForward));
    menu->addSeparator();
    AddAction(menu, tr("&Find Bone"), QKeySequence::Find, [this] {
        mBoneTree->GetFilter()->setFocus();
        mBoneTree->GetFilter()->selectAll();
    });
    // The panel's name tree uses F2 and Delete for its own rows: these keys work in the bone tree and viewport.
    mRenameAction = AddAction(menu, tr("Re&name Bone..."), QKeySequence(Qt::Key_F2), [this] { OnRenameBone(); });
    mDeleteAction = AddAction(menu, tr("&Delete Bone"), QKeySequence::Delete, [this] { OnDeleteBones(); });
    for (QAction* action : {mRenameAction, mDeleteAction})
    {
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        mBoneTree->GetTree()->addAction(action);
        mViewport->addAction(action);
    }
    mBoneTree->GetTree()->setContextMenuPolicy(Qt::ActionsContextMenu);
    menu->addSeparator();
    AddAction(menu, tr("&Preferences..."), QKeySequence(Qt::CTRL | Qt::Key_Comma), [this] { OnPreferences(); })
        ->setMenuRole(QAction::PreferencesRole);
}

void MainWindow::BuildCharacterMenu()
{
    SceneHub& hub = mSession.GetHub();
    QMenu* menu = menuBar()->addMenu(tr("&Character"));
    AddAction(menu, tr("&New Characterization..."), QKeySequence(Qt::CTRL | Qt::Key_N),
              [this] { OnNewCharacterization(); });
    AddAction(menu, tr("&Delete Characterization"), QKeySequence(),
              [&hub] { hub.DeleteCurrentCharacter(); });
    menu->addSeparator();
    mAutoAction = AddAction(menu, tr("A&uto Characterize"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_A),
                            [this] { OnAutoCharacterize(false); });
    mAutoAction->setStatusTip(tr("Map the current characterization afresh from the skeleton's shape and names"));
    mAutoSelectedAction = AddAction(menu, tr("Auto Characterize &Selected Character"), QKeySequence(),
                                    [this] { OnAutoCharacterize(true); });
    mAutoSelectedAction->setStatusTip(tr("Map the current characterization from the character that holds the "
                                         "selected bones"));
    AddAction(menu, tr("&Auto Match with Template..."), QKeySequence(Qt::CTRL | Qt::Key_T),
              [&hub] { hub.ShowMapBones(); });
    mTPoseAction = AddAction(menu, tr("Set &T-Pose"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_P),
                             [this] { OnSetTPose(); });
    mTPoseAction->setStatusTip(tr("Turn the skeleton's rest pose into a T-pose, Y up and facing +Z, as the current "
                                  "characterization maps it"));
    mMirrorAction = AddAction(menu, tr("&Mirror Matching"), QKeySequence(Qt::CTRL | Qt::Key_M),
                              [this] { OnToggleMirror(); });
    mMirrorAction->setCheckable(true);
    AddAction(menu, tr("&Configure Mirror..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_M),
              [&hub] { hub.ShowConfigureMirrorMatching(); });
    menu->addSeparator();
    mLockAction = AddAction(menu, tr("&Lock Characterization"), QKeySequence(Qt::CTRL | Qt::Key_L),
                            [this] { OnToggleLock(); });
    mLockAction->setCheckable(true);
    AddAction(menu, tr("E&xtract Template..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_T),
              [&hub] { hub.ShowExtractMappingTemplate(); });
}

void MainWindow::BuildViewMenu()
{
    mViewMenu = menuBar()->addMenu(tr("&View"));
    const QString names[] = {tr("&Front"), tr("&Side"), tr("&Perspective")};
    const Qt::Key keys[] = {Qt::Key_1, Qt::Key_2, Qt::Key_3};
    auto* views = new QActionGroup(this);
    for (int mode = SkeletonViewport::FrontView; mode <= SkeletonViewport::PerspectiveView; ++mode)
    {
        mViewActions[mode] = AddAction(mViewMenu, names[mode], QKeySequence(Qt::CTRL | keys[mode]), [this, mode] {
            mViewport->SetViewMode(SkeletonViewport::ViewMode(mode));
        });
        mViewActions[mode]->setCheckable(true);
        views->addAction(mViewActions[mode]);
    }
    AddAction(mViewMenu, tr("Frame &All"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_F),
              [this] { mViewport->FrameAll(); });
    mViewMenu->addSeparator();
    const QString pages[] = {tr("Fi&gure Page"), tr("Name &Match Page")};
    auto* pageGroup = new QActionGroup(this);
    for (int page = CharacterTool::FigurePage; page <= CharacterTool::NameMatchPage; ++page)
    {
        mPageActions[page] = AddAction(mViewMenu, pages[page], QKeySequence(),
                                       [this, page] { mTool->setCurrentViewTab(page); });
        mPageActions[page]->setCheckable(true);
        pageGroup->addAction(mPageActions[page]);
    }
    mViewMenu->addSeparator();
    for (QDockWidget* dock : findChildren<QDockWidget*>())
        mViewMenu->addAction(dock->toggleViewAction());
}

void MainWindow::BuildToolBar()
{
    QToolBar* bar = addToolBar(tr("Main"));
    bar->setObjectName(QStringLiteral("MainToolBar"));
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar->addAction(mOwnActions.front()); // Open Skeleton
    bar->addAction(mSaveAction);
    bar->addSeparator();
    bar->addAction(mUndoAction);
    bar->addAction(mRedoAction);
    bar->addSeparator();
    for (QAction* action : mViewActions)
        bar->addAction(action);
    bar->addSeparator();
    mCharacterizations = new QComboBox(bar);
    mCharacterizations->setToolTip(tr("The characterization being edited"));
    mCharacterizations->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    mCharacterizations->setMinimumContentsLength(16);
    bar->addWidget(mCharacterizations);
    bar->addAction(mLockAction);
    bar->addAction(mMirrorAction);
    mViewMenu->addAction(bar->toggleViewAction());
}

void MainWindow::ClaimPanelShortcuts()
{
    QList<QKeySequence> keys;
    for (const QAction* action : mOwnActions)
    {
        if (!action->shortcut().isEmpty())
            keys.append(action->shortcut());
    }
    for (QAction* action : mTool->actions())
    {
        if (keys.contains(action->shortcut()))
            action->setShortcut(QKeySequence());
    }
}
