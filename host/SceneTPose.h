#pragma once

#include <utility>
#include <vector>

#include <QMatrix4x4>

#include <zelkin/TPoseBuilder.h>

class Characterization;
class Scene;

// A T-pose for a scene, worked out from one of its characterizations: the scene's bones as TPoseBuilder reads them,
// and the local transforms it changes, ready for SceneHub::SetLocalTransforms.
class SceneTPose
{
public:
    SceneTPose(const Scene& scene, const Characterization& characterization);

    const TPoseBuilder::Result& GetResult() const { return mResult; }
    // The bones whose local transform changes, by index with the new one, in scene order; empty when nothing
    // turns or no T-pose could be worked out.
    const std::vector<std::pair<int, QMatrix4x4>>& GetLocals() const { return mLocals; }
    // The most turned bone's turn; null when none turned.
    const TPoseBuilder::Turn* LargestTurn() const;

    static std::vector<TPoseBuilder::Bone> Describe(const Scene& scene);

private:
    TPoseBuilder::Result mResult;
    std::vector<std::pair<int, QMatrix4x4>> mLocals;
};
