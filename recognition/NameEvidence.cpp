#include "NameEvidence.h"

#include <zelkin/BoneCatalogue.h>

#include "SkeletonGraph.h"
#include "TemplateOpinions.h"

NameEvidence::NameEvidence(const std::vector<SkeletonRecognizer::Bone>& bones, const SkeletonGraph& graph,
                           const TemplateOpinions* templates)
    : mBones(bones), mGraph(graph), mTemplates(templates), mReadings(bones.size()), mRead(bones.size(), false)
{
}

const NameReading& NameEvidence::operator[](int bone) const
{
    if (!mRead[bone])
    {
        NameReading reading = BoneName::Read(mBones[bone].name);
        int patternLength = 0;
        const int node = mTemplates != nullptr ? mTemplates->NodeFor(mBones[bone].name, &patternLength) : -1;
        Side side = Side::None;
        const Role role = node >= 0 ? RoleOfNode(node, side) : Role::Count;
        // A long pattern is a convention's exact name; a short one ("hip", "Arm") could end anything.
        if (role != Role::Count)
            reading.Hear(role, side, patternLength >= 6 ? 0.7f : 0.4f);
        mReadings[bone] = reading;
        mRead[bone] = true;
    }
    return mReadings[bone];
}

bool NameEvidence::IsEndMarker(int bone) const
{
    if (!mGraph.Children(bone).empty())
        return false;
    return (*this)[bone].Of(Role::End) >= 0.8f || mBones[bone].name.contains(QLatin1String("EndSite_"));
}

Role NameEvidence::RoleOfNode(int nodeId, Side& side)
{
    const QString name = QString::fromLatin1(BoneCatalogue::NodeName(nodeId));
    side = name.startsWith(QLatin1String("Left")) ? Side::Left
           : name.startsWith(QLatin1String("Right")) ? Side::Right
                                                     : Side::None;
    if (nodeId >= 50 && nodeId < 98)
    {
        static const Role kDigits[] = {Role::Thumb, Role::Index, Role::Middle, Role::Ring, Role::Pinky, Role::Finger};
        return kDigits[((nodeId - 50) / 4) % 6];
    }
    if ((nodeId >= 98 && nodeId < 146) || (nodeId >= 158 && nodeId < 170))
        return Role::Toe;
    if (nodeId >= 146 && nodeId < 158)
        return Role::Metacarpal;
    if ((nodeId >= 41 && nodeId <= 48) || nodeId >= 172)
        return Role::Twist;
    if (nodeId >= 23 && nodeId <= 31)
        return Role::Spine;
    if (nodeId >= 32 && nodeId <= 40)
        return Role::Neck;
    switch (nodeId)
    {
    case 1: return Role::Hips;
    case 2: case 5: return Role::Thigh;
    case 3: case 6: return Role::Shin;
    case 4: case 7: return Role::Foot;
    case 8: return Role::Spine;
    case 9: case 12: return Role::UpperArm;
    case 10: case 13: return Role::ForeArm;
    case 11: case 14: return Role::Hand;
    case 15: return Role::Head;
    case 16: case 17: return Role::Toe;
    case 18: case 19: case 170: case 171: return Role::Clavicle;
    case 20: return Role::Neck;
    case 21: case 22: return Role::FingerBase;
    default: return Role::Root; // the reference and the hips' translation
    }
}
