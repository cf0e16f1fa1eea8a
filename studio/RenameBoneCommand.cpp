#include "RenameBoneCommand.h"

#include <QCoreApplication>

#include "StudioSession.h"

RenameBoneCommand::RenameBoneCommand(StudioSession& session, const QString& bone, const QString& newName)
    : QUndoCommand(QCoreApplication::translate("RenameBoneCommand", "Rename %1").arg(bone))
    , mSession(session)
    , mBone(bone)
    , mNewName(newName)
{
}

void RenameBoneCommand::undo()
{
    // Straight back: the original name may hold characters that renaming through the hub would drop.
    if (mSession.ApplyRename(mNewName, mBone))
        mSession.PopEdit();
}

void RenameBoneCommand::redo()
{
    if (mSession.ApplyRename(mBone, mNewName))
        mSession.PushEdit({ProjectFile::BoneEdit::Rename, mBone, mNewName, {}});
}
