#pragma once

#include <vector>

#include <zelkin/SkeletonRecognizer.h>

#include "BoneName.h"

class SkeletonGraph;

// What every bone's name says, read when first asked: most bones of a large scene (hair, cloth) are never asked.
class NameEvidence
{
public:
    NameEvidence(const std::vector<SkeletonRecognizer::Bone>& bones, const SkeletonGraph& graph,
                 const TemplateOpinions* templates);

    const NameReading& operator[](int bone) const;
    // A leaf that only marks where its parent ends, by its name.
    bool IsEndMarker(int bone) const;
    // Named as something other than a body part: twist, helper, face, hair, cloth, prop...
    bool IsAccessory(int bone) const { return (*this)[bone].Accessory() >= 0.8f; }

    // The role and side a node stands for, as a name would say it.
    static Role RoleOfNode(int nodeId, Side& side);

private:
    const std::vector<SkeletonRecognizer::Bone>& mBones;
    const SkeletonGraph& mGraph;
    const TemplateOpinions* mTemplates;
    mutable std::vector<NameReading> mReadings;
    mutable std::vector<bool> mRead;
};
