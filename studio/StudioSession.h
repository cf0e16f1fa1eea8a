#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QUndoStack>

#include "SceneImporter.h"
#include "ProjectFile.h"
#include "Scene.h"
#include "SceneHub.h"

class AssignmentRecorder;
class CharacterTool;
class CharacterizationModel;

// What Zelkin Studio works on: the scene and its hub, the panel's characterizations, the undo stack and the project
// they are saved to. The window creates the panel over this hub and hands it over; every file operation checks
// everything it reads before it changes anything.
class StudioSession : public QObject
{
    Q_OBJECT

public:
    explicit StudioSession(QObject* parent = nullptr);
    ~StudioSession() override;

    Scene& GetScene() { return mScene; }
    const Scene& GetScene() const { return mScene; }
    SceneHub& GetHub() { return mHub; }
    QUndoStack& GetUndoStack() { return mUndo; }
    AssignmentRecorder* GetRecorder() const { return mRecorder; }
    // The panel must have been built over GetHub().
    void SetTool(CharacterTool* tool);
    CharacterTool* GetTool() const { return mTool; }
    CharacterizationModel* GetModel() const;

    bool HasSkeleton() const { return !mScene.IsEmpty(); }
    const QString& GetProjectPath() const { return mProjectPath; }
    const QList<ProjectFile::BoneEdit>& GetEdits() const { return mEdits; }

    // Each returns false with the one message for the user in `error`; an empty error means the user cancelled.
    // A new skeleton starts with one characterization for each humanoid found in it, or with one matched by the
    // template that fits it best when none is found.
    bool OpenSkeleton(const QString& path, const SceneImporter::ProgressCallback& progress, QString& error);
    bool OpenProject(const QString& path, const SceneImporter::ProgressCallback& progress, QString& error);
    bool SaveProject(const QString& path, QString& error);
    // A copy of the work as a project, for the autosave: the project path and the saved state stay as they are.
    bool WriteSnapshot(const QString& path, QString& error);
    // Opens a snapshot as the work of `projectPath` (empty for work never saved), with its changes unsaved.
    bool RestoreSnapshot(const QString& snapshotPath, const QString& projectPath, QString& error);
    // Seconds a skeleton may take to read; 0 for no limit.
    void SetReadingTimeLimit(int seconds) { mReadingTimeLimit = seconds; }

    // The user's scene edits, each one undoable step; false when refused (unknown bone, name empty or taken).
    bool RenameBone(const QString& bone, const QString& newName);
    bool DeleteBone(const QString& bone);
    // Undo and redo wait while the current characterization is locked: its mapping cannot change then.
    bool CanUndo() const;
    bool CanRedo() const;
    bool Undo();
    bool Redo();

    // Something the project would save differs from what was last opened or saved.
    bool IsModified() const;
    // What the project would save, in a form to compare.
    QByteArray StateSignature() const;

    // Maps the current characterization afresh from the skeleton, as one undoable step: the character it maps
    // already (else the one holding the selection, else the first), or with `selectedCharacter` the one holding
    // the selection. `message` says what was done, or why nothing was.
    bool AutoCharacterize(bool selectedCharacter, QString& message);
    // How the last skeleton opened was characterized, for the status bar.
    const QString& GetOpeningSummary() const { return mOpeningSummary; }
    // Puts the skeleton's rest pose into the T-pose the current characterization's mapping gives, as one undoable
    // step. `message` says what turned, or why nothing could; true also when the pose was a T-pose already.
    bool SetTPose(QString& message);

    // For the undo commands: the scene edit itself, told to the model through the hub's signals, and the record
    // of edits the project keeps.
    bool ApplyRename(const QString& bone, const QString& newName);
    bool ApplyDelete(const QString& bone);
    // A rest-pose edit and its undoing, told to the model through the hub.
    void ApplyPose(const std::vector<std::pair<int, QMatrix4x4>>& locals);
    void RestorePose(const std::vector<Scene::SavedTransforms>& saved);
    void PushEdit(const ProjectFile::BoneEdit& edit);
    void PopEdit();
    // The scene's bones were replaced behind the hub's back (a deleted bone came back).
    void NotifySkeletonChanged();

signals:
    // Bones were added, removed or renamed, or their rest pose changed.
    void SkeletonChanged();
    // A new scene was read: views frame it.
    void SkeletonReplaced();
    // The project path or the saved state changed.
    void ProjectChanged();

private:
    bool ImportSkeleton(const QString& path, const SceneImporter::ProgressCallback& progress, Scene& scene,
                        QString& error) const;
    static bool ReplayEdits(const QList<ProjectFile::BoneEdit>& edits, Scene& scene, QString& error);
    void ReplaceScene(Scene& scene);
    void CharacterizeNewSkeleton();
    // The current characterization's model when there is a skeleton and it is unlocked; otherwise null, with
    // the reason in `message`, naming what the user meant to do and what unlocking would let them do.
    CharacterizationModel* EditableModel(const QString& doing, const QString& afterUnlock, QString& message) const;
    // The character most of the current characterization's bones belong to; -1 when none does.
    int CurrentCharacter(const SkeletonRecognizer::Result& result,
                         const std::vector<SkeletonRecognizer::Bone>& bones) const;
    // Drops every characterization and starts with new ones of these names (one default one when empty).
    void ResetCharacterizations(const QStringList& names);
    void RestoreEntries(const ProjectFile& project);
    // Restored characterizations bypass the hub: the bones' attach counts are counted again from the model.
    void RecountAttachments();
    bool CollectEntries(ProjectFile& project, QString& error);
    void MarkSaved(const QString& projectPath);

    Scene mScene;
    SceneHub mHub {mScene};
    QUndoStack mUndo;
    CharacterTool* mTool = nullptr;
    AssignmentRecorder* mRecorder = nullptr;
    QList<ProjectFile::BoneEdit> mEdits;
    QString mProjectPath;
    QByteArray mSavedSignature;
    QString mOpeningSummary;
    int mReadingTimeLimit = SceneImporter::DefaultTimeLimit;
};
