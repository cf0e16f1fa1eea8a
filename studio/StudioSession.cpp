#include "StudioSession.h"

#include <cstdlib>

#include <QDataStream>
#include <QDir>
#include <QFileInfo>

#include <zelkin/Characterization.h>
#include <zelkin/CharacterTool.h>
#include <zelkin/CharacterizationModel.h>

#include "AssignmentRecorder.h"
#include "DeleteBoneCommand.h"
#include "RenameBoneCommand.h"
#include "SceneImporter.h"
#include "SceneTPose.h"
#include "SetTPoseCommand.h"

namespace
{
QString CannotOpen(const QString& path, const QString& problem)
{
    return StudioSession::tr("%1 cannot be opened: %2.").arg(QDir::toNativeSeparators(path), problem);
}

// What Set T-Pose did, for the status bar: how many bones turned, the one turned most and by how much.
QString TurnedText(const TPoseBuilder::Result& result, const QString& most, double degrees)
{
    const int turned = int(result.turns.size());
    const QString angle = QString::number(degrees, 'f', 1);
    QString text = turned == 1 ? StudioSession::tr("Set T-Pose: one bone turned, %1, by %2 degrees.").arg(most, angle)
                               : StudioSession::tr("Set T-Pose: %1 bones turned, %2 the most, by %3 degrees.")
                                     .arg(QString::number(turned), most, angle);
    if (result.frameDegrees >= TPoseBuilder::NoTurnDegrees)
        text += QLatin1Char(' ') + StudioSession::tr("The character now stands Y up, facing +Z.");
    return text;
}
} // namespace

StudioSession::StudioSession(QObject* parent)
    : QObject(parent)
{
}

StudioSession::~StudioSession() = default;

void StudioSession::SetTool(CharacterTool* tool)
{
    mTool = tool;
    delete mRecorder;
    mRecorder = GetModel() != nullptr ? new AssignmentRecorder(*GetModel(), mUndo, this) : nullptr;
    mSavedSignature = StateSignature();
}

CharacterizationModel* StudioSession::GetModel() const
{
    return mTool != nullptr ? mTool->GetModel() : nullptr;
}

bool StudioSession::OpenSkeleton(const QString& path, const SceneImporter::ProgressCallback& progress, QString& error)
{
    Scene scene;
    if (GetModel() == nullptr || !ImportSkeleton(path, progress, scene, error))
        return false;
    {
        AssignmentRecorder::Pause pause(mRecorder);
        ReplaceScene(scene);
        ResetCharacterizations({});
        CharacterizeNewSkeleton();
        GetModel()->Validate();
    }
    mEdits.clear();
    mUndo.clear();
    // Nothing here is the user's work yet: a freshly matched skeleton is not an unsaved project.
    MarkSaved(QString());
    emit SkeletonReplaced();
    return true;
}

bool StudioSession::OpenProject(const QString& path, const SceneImporter::ProgressCallback& progress, QString& error)
{
    ProjectFile project;
    if (GetModel() == nullptr || !project.Read(path, error))
        return false;
    Scene scene;
    QString problem;
    if (!ImportSkeleton(project.skeletonPath, progress, scene, problem) ||
        !ReplayEdits(project.edits, scene, problem))
    {
        error = problem.isEmpty() ? QString() : CannotOpen(path, problem);
        return false;
    }
    // Everything was checked: from here on nothing can fail half-way.
    mOpeningSummary.clear();
    {
        AssignmentRecorder::Pause pause(mRecorder);
        ReplaceScene(scene);
        RestoreEntries(project);
    }
    mEdits = project.edits;
    mUndo.clear();
    MarkSaved(QFileInfo(path).absoluteFilePath());
    emit SkeletonReplaced();
    return true;
}

bool StudioSession::SaveProject(const QString& path, QString& error)
{
    if (!WriteSnapshot(path, error))
        return false;
    MarkSaved(QFileInfo(path).absoluteFilePath());
    return true;
}

bool StudioSession::WriteSnapshot(const QString& path, QString& error)
{
    if (!HasSkeleton() || GetModel() == nullptr)
    {
        error = tr("There is no skeleton to keep in a project: open one first.");
        return false;
    }
    ProjectFile project;
    project.skeletonPath = QFileInfo(mScene.SourcePath()).absoluteFilePath();
    project.edits = mEdits;
    return CollectEntries(project, error) && project.Write(path, error);
}

bool StudioSession::RestoreSnapshot(const QString& snapshotPath, const QString& projectPath, QString& error)
{
    if (!OpenProject(snapshotPath, nullptr, error))
        return false;
    mProjectPath = projectPath.isEmpty() ? QString() : QFileInfo(projectPath).absoluteFilePath();
    // Restored work was never saved where it belongs.
    mSavedSignature.clear();
    emit ProjectChanged();
    return true;
}

bool StudioSession::RenameBone(const QString& bone, const QString& newName)
{
    const QString name = mHub.SanitizeBoneName(newName);
    if (mScene.IndexOf(bone) < 0 || name.isEmpty() || mScene.IndexOf(name) >= 0)
        return false;
    mUndo.push(new RenameBoneCommand(*this, bone, name));
    return true;
}

bool StudioSession::DeleteBone(const QString& bone)
{
    if (mScene.IndexOf(bone) < 0)
        return false;
    mUndo.push(new DeleteBoneCommand(*this, bone));
    return true;
}

bool StudioSession::CanUndo() const
{
    return mUndo.canUndo() && !(GetModel() != nullptr && GetModel()->IsLocked());
}

bool StudioSession::CanRedo() const
{
    return mUndo.canRedo() && !(GetModel() != nullptr && GetModel()->IsLocked());
}

bool StudioSession::Undo()
{
    if (!CanUndo())
        return false;
    mUndo.undo();
    return true;
}

bool StudioSession::Redo()
{
    if (!CanRedo())
        return false;
    mUndo.redo();
    return true;
}

bool StudioSession::IsModified() const
{
    return StateSignature() != mSavedSignature;
}

CharacterizationModel* StudioSession::EditableModel(const QString& doing, const QString& afterUnlock,
                                                   QString& message) const
{
    CharacterizationModel* model = GetModel();
    if (model == nullptr || !HasSkeleton())
    {
        message = tr("There is no skeleton to %1: open one first.").arg(doing);
        return nullptr;
    }
    if (model->IsLocked())
    {
        message = tr("The current characterization is locked: unlock it to %1.").arg(afterUnlock);
        return nullptr;
    }
    return model;
}

bool StudioSession::AutoCharacterize(bool selectedCharacter, QString& message)
{
    CharacterizationModel* model = EditableModel(tr("characterize"), tr("characterize it again"), message);
    if (model == nullptr)
        return false;
    QStringList selection;
    mHub.GetSelectedBones(selection);
    if (selectedCharacter && selection.isEmpty())
    {
        message = tr("Select a bone of the character to characterize first.");
        return false;
    }
    std::vector<SkeletonRecognizer::Bone> bones;
    const SkeletonRecognizer::Result result = model->RecognizeSkeleton(bones);
    int index = selectedCharacter ? model->SelectedCharacter(result, bones, false) : CurrentCharacter(result, bones);
    if (index < 0 && !selectedCharacter)
        index = model->SelectedCharacter(result, bones);
    if (index < 0)
    {
        message = result.characters.empty() ? SkeletonRecognizer::NoHumanoidText(mScene.BoneCount())
                                            : tr("The selected bones belong to no character found in the skeleton.");
        return false;
    }
    const SkeletonRecognizer::Character& character = result.characters[size_t(index)];
    model->ApplyRecognition(character, bones, CharacterizationModel::Merge::ReplaceAll);
    message = tr("Auto Characterize: \"%1\" (%2) gave %3 nodes, confidence %4%.")
                  .arg(bones[size_t(character.root)].name, SkeletonRecognizer::PoseKindName(character.pose))
                  .arg(character.nodes.size())
                  .arg(qRound(character.confidence * 100.0));
    return true;
}

bool StudioSession::SetTPose(QString& message)
{
    CharacterizationModel* model = EditableModel(tr("pose"), tr("set the T-pose"), message);
    if (model == nullptr)
        return false;
    const SceneTPose tpose(mScene, *model->GetCurrentCharacterization());
    const TPoseBuilder::Result& result = tpose.GetResult();
    if (!result.IsPosed())
    {
        message = result.error;
        return false;
    }
    const TPoseBuilder::Turn* largest = tpose.LargestTurn();
    if (tpose.GetLocals().empty() || largest == nullptr)
    {
        message = tr("Set T-Pose: the skeleton already stands in a T-pose; nothing turned.");
        return true;
    }
    mUndo.push(new SetTPoseCommand(*this, tpose.GetLocals()));
    message = TurnedText(result, mScene.Bone(largest->bone).name, largest->degrees);
    return true;
}

int StudioSession::CurrentCharacter(const SkeletonRecognizer::Result& result,
                                    const std::vector<SkeletonRecognizer::Bone>& bones) const
{
    const std::shared_ptr<Characterization> current = GetModel()->GetCurrentCharacterization();
    int best = -1;
    int bestShared = 0;
    for (size_t c = 0; current && c < result.characters.size(); ++c)
    {
        int shared = 0;
        for (const SkeletonRecognizer::NodeMatch& match : result.characters[c].nodes)
            shared += current->FindNode(bones[size_t(match.bone)].name) >= 0 ? 1 : 0;
        if (shared > bestShared)
        {
            best = int(c);
            bestShared = shared;
        }
    }
    return best;
}

bool StudioSession::ApplyRename(const QString& bone, const QString& newName)
{
    bool renamed = false;
    {
        AssignmentRecorder::Pause pause(mRecorder);
        renamed = mHub.ApplyRename(bone, newName);
    }
    if (renamed)
        emit SkeletonChanged();
    return renamed;
}

bool StudioSession::ApplyDelete(const QString& bone)
{
    bool deleted = false;
    {
        AssignmentRecorder::Pause pause(mRecorder);
        deleted = mHub.DeleteBone(bone);
    }
    if (deleted)
        emit SkeletonChanged();
    return deleted;
}

void StudioSession::ApplyPose(const std::vector<std::pair<int, QMatrix4x4>>& locals)
{
    {
        AssignmentRecorder::Pause pause(mRecorder);
        mHub.SetLocalTransforms(locals);
    }
    emit SkeletonChanged();
}

void StudioSession::RestorePose(const std::vector<Scene::SavedTransforms>& saved)
{
    {
        AssignmentRecorder::Pause pause(mRecorder);
        mHub.RestoreTransforms(saved);
    }
    emit SkeletonChanged();
}

void StudioSession::PushEdit(const ProjectFile::BoneEdit& edit)
{
    mEdits.append(edit);
}

void StudioSession::PopEdit()
{
    if (!mEdits.isEmpty())
        mEdits.removeLast();
}

void StudioSession::NotifySkeletonChanged()
{
    emit SkeletonChanged();
}

bool StudioSession::ImportSkeleton(const QString& path, const SceneImporter::ProgressCallback& progress, Scene& scene,
                                   QString& error) const
{
    SceneImporter importer;
    importer.SetProgressCallback(progress);
    importer.SetTimeLimit(mReadingTimeLimit);
    if (importer.Import(path, scene))
        return true;
    error = importer.WasCancelled() ? QString() : importer.ErrorText();
    return false;
}

bool StudioSession::ReplayEdits(const QList<ProjectFile::BoneEdit>& edits, Scene& scene, QString& error)
{
    for (const ProjectFile::BoneEdit& edit : edits)
    {
        const int index = scene.IndexOf(edit.bone);
        bool done = index >= 0;
        if (edit.kind == ProjectFile::BoneEdit::Pose && done)
            scene.SetLocalTransforms({{index, edit.local}});
        else if (edit.kind == ProjectFile::BoneEdit::Delete)
            done = scene.DeleteBone(edit.bone);
        else if (edit.kind == ProjectFile::BoneEdit::Rename)
            done = scene.RenameBone(edit.bone, edit.newName);
        if (!done)
        {
            error = tr("its bone edits do not fit the skeleton (%1 cannot be changed)").arg(edit.bone);
            return false;
        }
    }
    return true;
}

void StudioSession::ReplaceScene(Scene& scene)
{
    mScene = std::move(scene);
    // The old selection went with the old scene.
    emit mHub.selectionChanged();
}

void StudioSession::CharacterizeNewSkeleton()
{
    CharacterizationModel* model = GetModel();
    std::vector<SkeletonRecognizer::Bone> bones;
    const SkeletonRecognizer::Result result = model->RecognizeSkeleton(bones);
    if (result.characters.empty())
    {
        const int mapped = model->ApplyBestTemplate();
        mOpeningSummary = SkeletonRecognizer::NoHumanoidText(mScene.BoneCount()) + QLatin1Char(' ') +
                          tr("The best fitting template mapped %1 nodes.").arg(mapped);
        return;
    }
    // Several characters: each gets its own characterization, named after its root bone.
    for (size_t c = 0; c < result.characters.size(); ++c)
    {
        const QString root = bones[size_t(result.characters[c].root)].name;
        if (c > 0)
            model->CreateCharacterization(model->IndexOf(root) < 0 ? root : model->NextCharacterizationName());
        else if (result.characters.size() > 1)
            mHub.RenameCharacterObject(model->GetCurrentCharacterization()->GetName(), root);
        model->ApplyRecognition(result.characters[c], bones, CharacterizationModel::Merge::ReplaceAll);
    }
    model->SetCurrentCharacterization(0);
    const SkeletonRecognizer::Character& first = result.characters.front();
    const int found = int(result.characters.size());
    mOpeningSummary = (found == 1 ? tr("One character found; ") : tr("%1 characters found; ").arg(found)) +
                      tr("\"%1\": %2 nodes mapped (%3, confidence %4%).")
                          .arg(model->GetCurrentCharacterization()->GetName())
                          .arg(model->GetCurrentCharacterization()->AssignedCount())
                          .arg(SkeletonRecognizer::PoseKindName(first.pose))
                          .arg(qRound(first.confidence * 100.0));
}

void StudioSession::ResetCharacterizations(const QStringList& names)
{
    // The old characterizations name bones of the old scene: they go without detaching anything from the new one.
    GetModel()->SyncCharacterizationList({});
    if (!names.isEmpty())
        GetModel()->SyncCharacterizationList(names);
}

void StudioSession::RestoreEntries(const ProjectFile& project)
{
    CharacterizationModel* model = GetModel();
    QStringList names;
    for (const ProjectFile::Entry& entry : project.entries)
        names.append(entry.name);
    ResetCharacterizations(names);
    for (const ProjectFile::Entry& entry : project.entries)
    {
        model->SetCurrentCharacterization(model->IndexOf(entry.name));
        mTool->SetCharacterizationFromStream(entry.stream.constData(), static_cast<int32_t>(entry.stream.size()),
                                             entry.bones);
        // As it was saved: a characterization locked then stays locked without being validated first.
        if (entry.locked)
            model->SetEditMode(true);
    }
    model->SetCurrentCharacterization(model->IndexOf(project.current));
    RecountAttachments();
    model->Validate();
}

void StudioSession::RecountAttachments()
{
    for (int index = 0; index < mScene.BoneCount(); ++index)
    {
        mScene.Bone(index).attachCount = 0;
        mScene.Bone(index).node = -1;
    }
    const std::shared_ptr<Characterization> current = GetModel()->GetCurrentCharacterization();
    for (const std::shared_ptr<Characterization>& characterization : GetModel()->GetCharacterizations())
    {
        for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
        {
            SceneBone* bone = characterization->IsAssigned(nodeId) ? mScene.Find(characterization->GetBone(nodeId))
                                                                   : nullptr;
            if (bone == nullptr)
                continue;
            ++bone->attachCount;
            if (bone->node < 0 || characterization == current)
                bone->node = nodeId;
        }
    }
}

bool StudioSession::CollectEntries(ProjectFile& project, QString& error)
{
    CharacterizationModel* model = GetModel();
    const std::shared_ptr<Characterization> current = model->GetCurrentCharacterization();
    const CharacterizationModel::CharacterizationList all = model->GetCharacterizations();
    AssignmentRecorder::Pause pause(mRecorder);
    // The tool streams the current characterization only.
    bool collected = true;
    for (const std::shared_ptr<Characterization>& characterization : all)
    {
        if (characterization != model->GetCurrentCharacterization())
            model->SetCurrentCharacterization(model->IndexOf(characterization.get()));
        void* buffer = nullptr;
        int32_t length = 0;
        ProjectFile::Entry entry;
        if (!mTool->GetCharacterizationStream(buffer, length, entry.bones, false))
        {
            error = tr("The characterization \"%1\" cannot be written as a stream.").arg(characterization->GetName());
            collected = false;
            break;
        }
        entry.stream = QByteArray(static_cast<const char*>(buffer), length);
        std::free(buffer);
        entry.name = characterization->GetName();
        entry.locked = characterization->IsLocked();
        project.entries.push_back(entry);
    }
    if (current && current != model->GetCurrentCharacterization())
        model->SetCurrentCharacterization(model->IndexOf(current.get()));
    project.current = current ? current->GetName() : QString();
    return collected;
}

QByteArray StudioSession::StateSignature() const
{
    QByteArray signature;
    QDataStream out(&signature, QIODevice::WriteOnly);
    out << mScene.SourcePath();
    for (const ProjectFile::BoneEdit& edit : mEdits)
        out << int(edit.kind) << edit.bone << edit.newName << edit.local;
    if (const CharacterizationModel* model = GetModel())
    {
        out << model->GetCurrentIndex();
        for (const std::shared_ptr<Characterization>& characterization : model->GetCharacterizations())
        {
            out << characterization->GetName() << characterization->IsLocked() << characterization->GetBoneNames();
            for (int limb = 0; limb < ZELLimbCount; ++limb)
                out << characterization->IsInverted(limb);
        }
    }
    return signature;
}

void StudioSession::MarkSaved(const QString& projectPath)
{
    mProjectPath = projectPath;
    mSavedSignature = StateSignature();
    emit ProjectChanged();
}
