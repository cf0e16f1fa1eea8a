#include "MainWindow.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QMimeData>
#include <QSignalBlocker>
#include <QStatusBar>
#include <QTabWidget>
#include <QTimer>

#include <zelkin/Characterization.h>
#include <zelkin/CharacterTool.h>
#include <zelkin/CharacterizationModel.h>
#include <zelkin/UserConfiguration.h>

#include "Autosave.h"
#include "BoneTreeWidget.h"
#include "RecentFiles.h"
#include "StudioPreferences.h"

namespace
{
// The studio's files beside the panel's configuration.
QString StudioFilePath(const QString& configurationDirectory, const QString& name)
{
    const QString folder = configurationDirectory.isEmpty()
                               ? QFileInfo(UserConfiguration::ConfigFilePath()).absolutePath()
                               : QDir(configurationDirectory).filePath(QStringLiteral("config"));
    return QDir(folder).filePath(name);
}

QString AutosaveFolder(const QString& configurationDirectory)
{
    return configurationDirectory.isEmpty() ? Autosave::DefaultFolder()
                                            : QDir(configurationDirectory).filePath(QStringLiteral("autosave"));
}

QString StateText(ValidationState state)
{
    switch (state)
    {
    case Valid:
        return MainWindow::tr("Valid");
    case Warning:
        return MainWindow::tr("Valid with warnings");
    case Error:
        return MainWindow::tr("Not valid");
    default:
        return MainWindow::tr("Not validated");
    }
}

QStringList LocalFiles(const QMimeData* data)
{
    QStringList files;
    if (data == nullptr || !data->hasUrls())
        return files;
    for (const QUrl& url : data->urls())
    {
        if (url.isLocalFile())
            files.append(url.toLocalFile());
    }
    return files;
}
} // namespace

MainWindow::MainWindow(const QString& configurationDirectory, QWidget* parent)
    : QMainWindow(parent)
    , mRecent(std::make_unique<RecentFiles>(StudioFilePath(configurationDirectory, QStringLiteral("zelkin_studio.xml"))))
    , mPreferences(std::make_unique<StudioPreferences>(
          StudioFilePath(configurationDirectory, QStringLiteral("zelkin_studio.ini"))))
    , mAutosave(std::make_unique<Autosave>(mSession, AutosaveFolder(configurationDirectory)))
{
    setObjectName(QStringLiteral("ZelkinStudio"));
    setAcceptDrops(true);
    mViewport = new SkeletonViewport(mSession.GetHub(), this);
    setCentralWidget(mViewport);
    BuildDocks(configurationDirectory);
    mSession.SetTool(mTool);
    mViewport->SetModel(mTool->GetModel());
    mBoneTree->SetModel(mTool->GetModel());
    BuildFileMenu();
    BuildEditMenu();
    BuildCharacterMenu();
    BuildViewMenu();
    BuildToolBar();
    ClaimPanelShortcuts();
    mValidationLabel = new QLabel(this);
    mValidationLabel->setContentsMargins(6, 0, 6, 0);
    statusBar()->addPermanentWidget(mValidationLabel);
    ConnectViews();
    resize(1440, 900);
    ApplyPreferences(mPreferences->ReadingTimeLimit(), mPreferences->AutosaveMinutes());
    connect(mAutosave.get(), &Autosave::Failed, this, [this](const QString& error) { ShowStatus(error); });
    UpdateState();
    ShowStatus(tr("Open a skeleton or a project to begin."));
}

MainWindow::~MainWindow()
{
    // The autosave reads the session and the panel: it goes before them.
    mAutosave.reset();
    // The session and the panel send their last notices while they go: nothing here is to answer them.
    disconnect(&mSession, nullptr, this, nullptr);
    disconnect(&mSession.GetUndoStack(), nullptr, this, nullptr);
    disconnect(&mSession.GetHub(), nullptr, this, nullptr);
    disconnect(mViewport, nullptr, this, nullptr);
    // The panel talks to the session's hub while it goes, so it must go first.
    CharacterTool* tool = mTool;
    mTool = nullptr;
    delete tool;
}

void MainWindow::BuildDocks(const QString& configurationDirectory)
{
    auto* treeDock = new QDockWidget(tr("Skeleton"), this);
    treeDock->setObjectName(QStringLiteral("SkeletonDock"));
    mBoneTree = new BoneTreeWidget(mSession.GetHub(), treeDock);
    treeDock->setWidget(mBoneTree);
    addDockWidget(Qt::LeftDockWidgetArea, treeDock);

    auto* panelDock = new QDockWidget(tr("Characterization"), this);
    panelDock->setObjectName(QStringLiteral("CharacterizationDock"));
    const QByteArray configuration = QFile::encodeName(configurationDirectory);
    mTool = new CharacterTool(false, nullptr, configurationDirectory.isEmpty() ? nullptr : configuration.constData(),
                              panelDock, &mSession.GetHub());
    panelDock->setWidget(mTool);
    addDockWidget(Qt::RightDockWidgetArea, panelDock);
    resizeDocks({treeDock, panelDock}, {380, 420}, Qt::Horizontal);
}

void MainWindow::ConnectViews()
{
    CharacterizationModel* model = mTool->GetModel();
    connect(&mSession, &StudioSession::SkeletonChanged, mBoneTree, &BoneTreeWidget::Rebuild);
    connect(&mSession, &StudioSession::SkeletonChanged, mViewport, qOverload<>(&QWidget::update));
    connect(&mSession, &StudioSession::SkeletonReplaced, mBoneTree, &BoneTreeWidget::Rebuild);
    connect(&mSession, &StudioSession::SkeletonReplaced, mViewport, &SkeletonViewport::FrameAll);
    connect(&mSession, &StudioSession::ProjectChanged, this, &MainWindow::UpdateState);
    connect(&mSession.GetUndoStack(), &QUndoStack::indexChanged, this, &MainWindow::UpdateState);
    connect(&mSession.GetHub(), &IDCCHub::selectionChanged, this, &MainWindow::UpdateState);
    connect(mViewport, &SkeletonViewport::ViewModeChanged, this, &MainWindow::UpdateState);
    connect(mTool->GetPages(), &QTabWidget::currentChanged, this, &MainWindow::UpdateState);
    connect(model, &CharacterizationModel::ModelChanged, this, [this, model] {
        if (mTool == nullptr)
            return;
        ShowStatus(model->GetLastOperationText());
        UpdateState();
    });
    connect(mCharacterizations, qOverload<int>(&QComboBox::activated), model,
            [model](int index) { model->SetCurrentCharacterization(index); });
}

void MainWindow::UpdateState()
{
    if (mTool == nullptr)
        return;
    const CharacterizationModel* model = mTool->GetModel();
    const QUndoStack& stack = mSession.GetUndoStack();
    mUndoAction->setEnabled(mSession.CanUndo());
    mUndoAction->setText(stack.canUndo() ? tr("&Undo %1").arg(stack.undoText()) : tr("&Undo"));
    mRedoAction->setEnabled(mSession.CanRedo());
    mRedoAction->setText(stack.canRedo() ? tr("&Redo %1").arg(stack.redoText()) : tr("&Redo"));
    mSaveAction->setEnabled(mSession.HasSkeleton());
    mSaveAsAction->setEnabled(mSession.HasSkeleton());
    const QStringList& selection = mSession.GetScene().Selection();
    mRenameAction->setEnabled(!selection.isEmpty());
    mDeleteAction->setEnabled(!selection.isEmpty());
    mLockAction->setChecked(model->IsLocked());
    mMirrorAction->setChecked(model->IsMirrorMode());
    mAutoAction->setEnabled(mSession.HasSkeleton() && !model->IsLocked());
    mAutoSelectedAction->setEnabled(mSession.HasSkeleton() && !model->IsLocked() && !selection.isEmpty());
    mTPoseAction->setEnabled(mSession.HasSkeleton() && !model->IsLocked());
    mViewActions[mViewport->GetViewMode()]->setChecked(true);
    const int page = mTool->currentViewTab();
    if (page == CharacterTool::FigurePage || page == CharacterTool::NameMatchPage)
        mPageActions[page]->setChecked(true);
    FillCharacterizationChooser();
    UpdateTitle();
    UpdateValidationLabel();
}

void MainWindow::FillCharacterizationChooser()
{
    const CharacterizationModel* model = mTool->GetModel();
    const QStringList names = model->GetCharacterizationNames();
    const QSignalBlocker blocker(mCharacterizations);
    QStringList shown;
    for (int index = 0; index < mCharacterizations->count(); ++index)
        shown.append(mCharacterizations->itemText(index));
    if (shown != names)
    {
        mCharacterizations->clear();
        mCharacterizations->addItems(names);
    }
    mCharacterizations->setCurrentIndex(model->GetCurrentIndex());
}

void MainWindow::UpdateTitle()
{
    const QString file = !mSession.GetProjectPath().isEmpty() ? mSession.GetProjectPath()
                                                               : mSession.GetScene().SourcePath();
    setWindowTitle(file.isEmpty() ? tr("Zelkin Studio")
                                  : tr("%1[*] - Zelkin Studio").arg(QFileInfo(file).fileName()));
    setWindowModified(mSession.HasSkeleton() && mSession.IsModified());
}

void MainWindow::UpdateValidationLabel()
{
    const CharacterizationModel* model = mTool->GetModel();
    const std::shared_ptr<Characterization> current = model->GetCurrentCharacterization();
    if (!current || !mSession.HasSkeleton())
    {
        mValidationLabel->clear();
        return;
    }
    QString text = tr("%1: %2 nodes mapped, %3")
                       .arg(current->GetName())
                       .arg(current->AssignedCount())
                       .arg(StateText(model->GetValidationState()));
    if (model->IsLocked())
        text += tr(", locked");
    const QColor colour = SkeletonViewport::StateColour(model->GetValidationState());
    mValidationLabel->setText(QStringLiteral("<span style=\"color:%1\">&#9679;</span> %2")
                                  .arg(colour.name(), text.toHtmlEscaped()));
    mValidationLabel->setToolTip(QString::fromStdString(model->GetValidationMessage()));
}

void MainWindow::ShowStatus(const QString& text)
{
    statusBar()->showMessage(text);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (MaybeSave())
        event->accept();
    else
        event->ignore();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (!LocalFiles(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    const QStringList files = LocalFiles(event->mimeData());
    if (files.isEmpty())
        return;
    event->acceptProposedAction();
    // Not inside the drop: the drag source waits until it returns, and opening may ask questions.
    const QString path = files.first();
    QTimer::singleShot(0, this, [this, path] { OpenFile(path); });
}
