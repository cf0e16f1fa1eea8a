#include "AssignmentRecorder.h"

#include <QUndoStack>

#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationModel.h>

#include "MappingCommand.h"

AssignmentRecorder::Pause::Pause(AssignmentRecorder* recorder)
    : mRecorder(recorder)
{
    if (mRecorder != nullptr)
        ++mRecorder->mPaused;
}

AssignmentRecorder::Pause::~Pause()
{
    if (mRecorder != nullptr && --mRecorder->mPaused == 0)
        mRecorder->Resync();
}

AssignmentRecorder::AssignmentRecorder(CharacterizationModel& model, QUndoStack& stack, QObject* parent)
    : QObject(parent)
    , mModel(model)
    , mStack(stack)
{
    connect(&mModel, &CharacterizationModel::ModelChanged, this, &AssignmentRecorder::OnModelChanged);
    Resync();
}

void AssignmentRecorder::Resync()
{
    const std::shared_ptr<Characterization> current = mModel.GetCurrentCharacterization();
    mTracked = current;
    mBones = current ? current->GetBoneNames() : QStringList();
}

void AssignmentRecorder::OnModelChanged()
{
    if (IsPaused())
        return;
    const std::shared_ptr<Characterization> current = mModel.GetCurrentCharacterization();
    // Another characterization became current: nothing of the old one changed here.
    if (!current || current != mTracked.lock())
    {
        Resync();
        return;
    }
    const QStringList bones = current->GetBoneNames();
    if (bones == mBones)
        return;
    const QStringList before = mBones;
    mBones = bones;
    mStack.push(new MappingCommand(*this, current, before, bones));
}
