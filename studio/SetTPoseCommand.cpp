#include "SetTPoseCommand.h"

#include <QCoreApplication>

#include "StudioSession.h"

SetTPoseCommand::SetTPoseCommand(StudioSession& session, const std::vector<std::pair<int, QMatrix4x4>>& locals)
    : QUndoCommand(QCoreApplication::translate("SetTPoseCommand", "Set T-Pose"))
    , mSession(session)
    , mLocals(locals)
{
}

void SetTPoseCommand::redo()
{
    Scene& scene = mSession.GetScene();
    std::vector<int> turned;
    for (const auto& [index, local] : mLocals)
        turned.push_back(index);
    mSaved = scene.SaveTransforms(scene.Subtrees(turned));
    mSession.ApplyPose(mLocals);
    for (const auto& [index, local] : mLocals)
    {
        ProjectFile::BoneEdit edit;
        edit.kind = ProjectFile::BoneEdit::Pose;
        edit.bone = scene.Bone(index).name;
        edit.local = local;
        mSession.PushEdit(edit);
    }
}

void SetTPoseCommand::undo()
{
    mSession.RestorePose(mSaved);
    for (size_t i = 0; i < mLocals.size(); ++i)
        mSession.PopEdit();
}
