#pragma once

#include <utility>
#include <vector>

#include <QMatrix4x4>
#include <QUndoCommand>

#include "Scene.h"

class StudioSession;

// "Set T-Pose": new local transforms for the bones a T-pose turns. The project keeps each as a rest-pose edit; the
// model takes the new geometry through the hub. Undo puts every transform that changed back exactly as it was.
class SetTPoseCommand : public QUndoCommand
{
public:
    SetTPoseCommand(StudioSession& session, const std::vector<std::pair<int, QMatrix4x4>>& locals);

    void undo() override;
    void redo() override;

private:
    StudioSession& mSession;
    std::vector<std::pair<int, QMatrix4x4>> mLocals;
    std::vector<Scene::SavedTransforms> mSaved;
};
