#pragma once

#include <memory>
#include <utility>
#include <vector>

#include <QMatrix4x4>
#include <QString>
#include <QUndoCommand>

#include <zelkin/Characterization.h>

#include "SceneBone.h"

class StudioSession;

// A bone deleted in the studio. The model unassigns it from every characterization (unlocking those that held it);
// undo puts the bone back in its place with its children under it and gives those characterizations back exactly
// as they were, lock included.
class DeleteBoneCommand : public QUndoCommand
{
public:
    DeleteBoneCommand(StudioSession& session, const QString& bone);

    void undo() override;
    void redo() override;

private:
    struct Holder
    {
        std::weak_ptr<Characterization> live;
        Characterization saved;
    };

    void TakeSnapshot();
    void ReinsertBone();
    void RestoreHolders();

    StudioSession& mSession;
    QString mName;
    int mIndex = -1;
    SceneBone mBone;
    QString mParent;
    // The children's transforms relative to the bone, by name.
    std::vector<std::pair<QString, QMatrix4x4>> mChildren;
    bool mSelected = false;
    std::vector<Holder> mHolders;
};
