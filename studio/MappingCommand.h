#pragma once

#include <memory>

#include <QStringList>
#include <QUndoCommand>

class AssignmentRecorder;
class Characterization;

// One change of a characterization's bone mapping, already made when it is pushed. Undo and redo reassign the nodes
// that differ, through the model, so the host hears of every bone attached or detached. The step lapses when its
// characterization is gone or locked.
class MappingCommand : public QUndoCommand
{
public:
    MappingCommand(AssignmentRecorder& recorder, const std::shared_ptr<Characterization>& characterization,
                   const QStringList& before, const QStringList& after);

    void undo() override;
    void redo() override;

    // "Map LeftArm", "Clear LeftArm" or "Change 12 nodes".
    static QString Describe(const QStringList& before, const QStringList& after);

private:
    void Apply(const QStringList& bones);

    AssignmentRecorder& mRecorder;
    std::weak_ptr<Characterization> mCharacterization;
    QStringList mBefore;
    QStringList mAfter;
    bool mDone = true;
};
