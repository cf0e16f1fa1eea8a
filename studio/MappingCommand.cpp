#include "MappingCommand.h"

#include <vector>

#include <QCoreApplication>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationModel.h>

#include "AssignmentRecorder.h"

namespace
{
std::vector<int> ChangedNodes(const QStringList& before, const QStringList& after)
{
    std::vector<int> nodes;
    for (int nodeId = 0; nodeId < before.size() && nodeId < after.size(); ++nodeId)
    {
        if (before[nodeId] != after[nodeId])
            nodes.push_back(nodeId);
    }
    return nodes;
}
} // namespace

MappingCommand::MappingCommand(AssignmentRecorder& recorder, const std::shared_ptr<Characterization>& characterization,
                               const QStringList& before, const QStringList& after)
    : QUndoCommand(Describe(before, after))
    , mRecorder(recorder)
    , mCharacterization(characterization)
    , mBefore(before)
    , mAfter(after)
{
}

QString MappingCommand::Describe(const QStringList& before, const QStringList& after)
{
    const std::vector<int> changed = ChangedNodes(before, after);
    if (changed.size() != 1)
        return QCoreApplication::translate("MappingCommand", "Change %1 nodes").arg(changed.size());
    const int nodeId = changed.front();
    const QString node = QString::fromLatin1(BoneCatalogue::NodeName(nodeId));
    const char* text = after[nodeId].isEmpty() ? QT_TRANSLATE_NOOP("MappingCommand", "Clear %1")
                                                : QT_TRANSLATE_NOOP("MappingCommand", "Map %1");
    return QCoreApplication::translate("MappingCommand", text).arg(node);
}

void MappingCommand::undo()
{
    Apply(mBefore);
}

void MappingCommand::redo()
{
    // Pushed after the change was made.
    if (mDone)
    {
        mDone = false;
        return;
    }
    Apply(mAfter);
}

void MappingCommand::Apply(const QStringList& bones)
{
    CharacterizationModel& model = mRecorder.GetModel();
    const std::shared_ptr<Characterization> target = mCharacterization.lock();
    if (!target || target->IsLocked())
    {
        setObsolete(true);
        return;
    }
    AssignmentRecorder::Pause pause(&mRecorder);
    if (target != model.GetCurrentCharacterization())
        model.SetCurrentCharacterization(model.IndexOf(target.get()));
    std::vector<CharacterizationModel::Assignment> assignments;
    for (int nodeId : ChangedNodes(target->GetBoneNames(), bones))
        assignments.emplace_back(nodeId, bones[nodeId]);
    model.AssignBones(assignments);
}
