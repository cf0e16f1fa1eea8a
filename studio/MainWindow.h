#pragma once

#include <functional>
#include <memory>

#include <QList>
#include <QMainWindow>
#include <QString>

#include "SceneImporter.h"
#include "SkeletonViewport.h"
#include "StudioSession.h"

class Autosave;
class BoneTreeWidget;
class CharacterTool;
class QActionGroup;
class QComboBox;
class QLabel;
class QMenu;
class RecentFiles;
class StudioPreferences;

// Zelkin Studio's window: the bone tree on the left, the skeleton viewport in the middle, the characterization panel
// on the right, and the menus that drive them. Files can be dropped on it; the status bar shows the model's last
// operation and where validation stands.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    // configurationDirectory: the panel's configuration and templates, the recent files list, the preferences and
    // the autosave; the per-user folders when empty.
    explicit MainWindow(const QString& configurationDirectory = QString(), QWidget* parent = nullptr);
    ~MainWindow() override;

    // No message boxes and no questions: messages go to the error output (screenshots, scripts).
    void SetBatchMode(bool batch) { mBatch = batch; }
    bool IsBatchMode() const { return mBatch; }

    // Each reports a failure once and then leaves everything as it was.
    // By extension: a project, a characterization file (".zelc", ".xml") into the current characterization, or a
    // skeleton.
    bool OpenFile(const QString& path);
    bool OpenSkeleton(const QString& path);
    bool OpenProject(const QString& path);
    bool SaveProject(const QString& path);
    bool RenameBone(const QString& bone, const QString& newName);
    // All in one undoable step.
    bool DeleteBones(const QStringList& bones);

    // At start: offers back the newest work a studio that crashed or was killed left in the autosave. Restore
    // brings it back, unsaved; Discard drops it; Not Now keeps it for the next start. True when work was restored.
    bool OfferRestore();
    Autosave& GetAutosave() const { return *mAutosave; }
    StudioPreferences& GetPreferences() const { return *mPreferences; }
    // Takes new preferences and applies them at once.
    void ApplyPreferences(int readingTimeLimit, int autosaveMinutes);

    StudioSession& GetSession() { return mSession; }
    CharacterTool* GetTool() const { return mTool; }
    SkeletonViewport* GetViewport() const { return mViewport; }
    BoneTreeWidget* GetBoneTree() const { return mBoneTree; }
    RecentFiles& GetRecentFiles() const { return *mRecent; }
    QAction* GetUndoAction() const { return mUndoAction; }
    QAction* GetRedoAction() const { return mRedoAction; }
    QAction* GetAutoCharacterizeAction(bool selectedCharacter) const
    {
        return selectedCharacter ? mAutoSelectedAction : mAutoAction;
    }
    QAction* GetTPoseAction() const { return mTPoseAction; }

public slots:
    void OnOpenSkeleton();
    void OnOpenProject();
    bool OnSaveProject();
    bool OnSaveProjectAs();
    void OnImportCharacterization();
    void OnUndo();
    void OnRedo();
    void OnRenameBone();
    void OnDeleteBones();
    void OnNewCharacterization();
    void OnAutoCharacterize(bool selectedCharacter);
    void OnSetTPose();
    void OnToggleLock();
    void OnToggleMirror();
    void OnPreferences();
    void UpdateState();

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    using ImportJob = std::function<bool(const SceneImporter::ProgressCallback&, QString&)>;

    void BuildDocks(const QString& configurationDirectory);
    void BuildFileMenu();
    void BuildEditMenu();
    void BuildCharacterMenu();
    void BuildViewMenu();
    void BuildToolBar();
    void ConnectViews();
    QAction* AddAction(QMenu* menu, const QString& text, const QKeySequence& keys,
                       const std::function<void()>& handler);
    // The panel's own shortcuts for the same keys would be ambiguous: the window's menus keep them.
    void ClaimPanelShortcuts();

    // Asks about unsaved changes, runs the job with progress, then reports and remembers the file.
    bool OpenWith(const QString& path, const QString& title, const ImportJob& job);
    // Runs a file import under a cancellable progress dialog; false with an empty error when cancelled.
    bool RunImport(const QString& path, const ImportJob& job, QString& error);
    bool ConcludeOpen(bool opened, const QString& path, const QString& title, const QString& error);
    void ShowError(const QString& title, const QString& text);
    void ShowStatus(const QString& text);
    // Asks to save unsaved work first; false when the user would rather stay.
    bool MaybeSave();
    // The autosave before something that could go wrong; a failure is said in the status bar.
    void AutosaveNow();
    QString SelectedBone() const;

    void FillRecentMenu();
    void FillCharacterizationChooser();
    void UpdateTitle();
    void UpdateValidationLabel();

    StudioSession mSession;
    std::unique_ptr<RecentFiles> mRecent;
    std::unique_ptr<StudioPreferences> mPreferences;
    std::unique_ptr<Autosave> mAutosave;
    bool mBatch = false;
    CharacterTool* mTool = nullptr;
    SkeletonViewport* mViewport = nullptr;
    BoneTreeWidget* mBoneTree = nullptr;
    QComboBox* mCharacterizations = nullptr;
    QLabel* mValidationLabel = nullptr;
    QMenu* mRecentMenu = nullptr;
    QMenu* mViewMenu = nullptr;
    QAction* mUndoAction = nullptr;
    QAction* mRedoAction = nullptr;
    QAction* mSaveAction = nullptr;
    QAction* mSaveAsAction = nullptr;
    QAction* mRenameAction = nullptr;
    QAction* mDeleteAction = nullptr;
    QAction* mLockAction = nullptr;
    QAction* mAutoAction = nullptr;
    QAction* mAutoSelectedAction = nullptr;
    QAction* mTPoseAction = nullptr;
    QAction* mMirrorAction = nullptr;
    QAction* mViewActions[3] = {nullptr, nullptr, nullptr};
    QAction* mPageActions[2] = {nullptr, nullptr};
    QList<QAction*> mOwnActions;
};
