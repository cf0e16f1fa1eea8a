#include "SceneTPose.h"

#include <algorithm>

#include "Scene.h"

namespace
{
QMatrix4x4 ToQt(const TPoseBuilder::Matrix& matrix)
{
    QMatrix4x4 converted;
    float* data = converted.data();
    for (size_t i = 0; i < matrix.size(); ++i)
        data[i] = float(matrix[i]);
    return converted;
}

bool SameElements(const QMatrix4x4& a, const QMatrix4x4& b)
{
    return std::equal(a.constData(), a.constData() + 16, b.constData());
}
} // namespace

SceneTPose::SceneTPose(const Scene& scene, const Characterization& characterization)
    : mResult(TPoseBuilder::Build(Describe(scene), characterization))
{
    for (size_t i = 0; i < mResult.locals.size(); ++i)
    {
        const QMatrix4x4 local = ToQt(mResult.locals[i]);
        if (!SameElements(local, scene.Bone(int(i)).local))
            mLocals.emplace_back(int(i), local);
    }
}

const TPoseBuilder::Turn* SceneTPose::LargestTurn() const
{
    const auto largest = std::max_element(mResult.turns.begin(), mResult.turns.end(),
                                          [](const auto& a, const auto& b) { return a.degrees < b.degrees; });
    return largest == mResult.turns.end() ? nullptr : &*largest;
}

std::vector<TPoseBuilder::Bone> SceneTPose::Describe(const Scene& scene)
{
    std::vector<TPoseBuilder::Bone> bones(size_t(scene.BoneCount()));
    for (int i = 0; i < scene.BoneCount(); ++i)
    {
        const SceneBone& from = scene.Bone(i);
        TPoseBuilder::Bone& bone = bones[size_t(i)];
        bone.name = from.name;
        bone.parent = from.parent;
        std::copy(from.local.constData(), from.local.constData() + 16, bone.local.begin());
        bone.hasTip = from.hasTip;
        bone.tip = {from.tip.x(), from.tip.y(), from.tip.z()};
    }
    return bones;
}
