#include "DeleteBoneCommand.h"

#include <algorithm>

#include <QCoreApplication>

#include <zelkin/CharacterizationModel.h>

#include "AssignmentRecorder.h"
#include "StudioSession.h"

DeleteBoneCommand::DeleteBoneCommand(StudioSession& session, const QString& bone)
    : QUndoCommand(QCoreApplication::translate("DeleteBoneCommand", "Delete %1").arg(bone))
    , mSession(session)
    , mName(bone)
{
}

void DeleteBoneCommand::redo()
{
    TakeSnapshot();
    if (mIndex >= 0 && mSession.ApplyDelete(mName))
        mSession.PushEdit({ProjectFile::BoneEdit::Delete, mName, QString(), {}});
    else
        setObsolete(true);
}

void DeleteBoneCommand::undo()
{
    {
        AssignmentRecorder::Pause pause(mSession.GetRecorder());
        ReinsertBone();
        RestoreHolders();
    }
    mSession.PopEdit();
    mSession.NotifySkeletonChanged();
    if (mSelected)
        mSession.GetHub().SelectBones(mSession.GetScene().Selection() + QStringList {mName});
}

void DeleteBoneCommand::TakeSnapshot()
{
    const Scene& scene = mSession.GetScene();
    mIndex = scene.IndexOf(mName);
    if (mIndex < 0)
        return;
    mBone = scene.Bone(mIndex);
    mParent = mBone.parent < 0 ? QString() : scene.Bone(mBone.parent).name;
    mChildren.clear();
    for (int child : scene.Children(mIndex))
        mChildren.emplace_back(scene.Bone(child).name, scene.Bone(child).local);
    mSelected = scene.Selection().contains(mName);
    mHolders.clear();
    if (const CharacterizationModel* model = mSession.GetModel())
    {
        for (const std::shared_ptr<Characterization>& characterization : model->GetCharacterizations())
        {
            if (characterization->FindNode(mName) >= 0)
                mHolders.push_back({characterization, *characterization});
        }
    }
}

void DeleteBoneCommand::ReinsertBone()
{
    // The scene only appends bones, so it is built again with the bone back in its place; the bones keep their
    // attach counts; the deleted one is counted again once its holders are given back.
    Scene& scene = mSession.GetScene();
    Scene rebuilt;
    const auto add = [&rebuilt](SceneBone bone, const QString& parent) {
        bone.parent = parent.isEmpty() ? -1 : rebuilt.IndexOf(parent);
        rebuilt.AddBone(bone);
    };
    const int count = scene.BoneCount();
    const int at = std::min(mIndex, count);
    for (int i = 0; i <= count; ++i)
    {
        if (i == at)
            add(mBone, mParent);
        if (i == count)
            break;
        SceneBone bone = scene.Bone(i);
        QString parent = bone.parent < 0 ? QString() : scene.Bone(bone.parent).name;
        for (const auto& [child, local] : mChildren)
        {
            if (child == bone.name)
            {
                parent = mName;
                bone.local = local;
            }
        }
        add(bone, parent);
    }
    rebuilt.SetSelection(scene.Selection());
    for (const QString& character : scene.Characters())
        rebuilt.AddCharacter(character);
    rebuilt.SetSourcePath(scene.SourcePath());
    scene = std::move(rebuilt);
}

void DeleteBoneCommand::RestoreHolders()
{
    CharacterizationModel* model = mSession.GetModel();
    if (model == nullptr)
        return;
    for (const Holder& holder : mHolders)
    {
        const std::shared_ptr<Characterization> live = holder.live.lock();
        // Gone, or locked again since: its mapping is no longer the one the delete left.
        if (!live || live->IsLocked())
            continue;
        Characterization restored = holder.saved;
        restored.SetName(live->GetName());
        const bool current = live == model->GetCurrentCharacterization();
        // The current one is locked again through the model, which tells the views.
        if (current)
            restored.SetLocked(live->IsLocked());
        *live = restored;
        if (current && holder.saved.IsLocked() != live->IsLocked())
            model->SetEditMode(holder.saved.IsLocked());
    }
    // Only the nodes given back hold the bone again.
    int holders = 0;
    for (const std::shared_ptr<Characterization>& characterization : model->GetCharacterizations())
        holders += static_cast<int>(characterization->GetBoneNames().count(mName));
    if (SceneBone* bone = mSession.GetScene().Find(mName))
        bone->attachCount = holders;
    model->Validate();
}
