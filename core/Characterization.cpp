#include <zelkin/Characterization.h>

#include <QCoreApplication>

namespace
{
bool InRange(int nodeId)
{
    return nodeId >= 0 && nodeId < ZELNodeCount;
}

bool InLimbRange(int limb)
{
    return limb >= 0 && limb < ZELLimbCount;
}

// Flag bits 0 to 2 together mark a node that carries its full joint geometry.
constexpr uint32_t FullGeometryBits = 7u;
} // namespace

QString Characterization::DefaultName()
{
    return QCoreApplication::translate("Characterization", "New Characterization");
}

Characterization::Characterization(const QString& name)
    : mName(name)
{
}

QString Characterization::GetBone(int nodeId) const
{
    return InRange(nodeId) ? mBones[nodeId] : QString();
}

void Characterization::SetBone(int nodeId, const QString& bone)
{
    if (!InRange(nodeId))
        return;
    if (bone.isEmpty())
    {
        mBones[nodeId].clear();
        mFlags[nodeId] = 0;
        mGeometry[nodeId].Reset();
        return;
    }
    mBones[nodeId] = bone;
    mFlags[nodeId] |= 1u;
}

bool Characterization::IsAssigned(int nodeId) const
{
    return InRange(nodeId) && !mBones[nodeId].isEmpty();
}

int Characterization::AssignedCount() const
{
    int count = 0;
    for (const QString& bone : mBones)
        count += bone.isEmpty() ? 0 : 1;
    return count;
}

int Characterization::FindNode(const QString& bone) const
{
    if (bone.isEmpty())
        return -1;
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        if (mBones[nodeId] == bone)
            return nodeId;
    }
    return -1;
}

QStringList Characterization::GetBoneNames() const
{
    QStringList names;
    names.reserve(ZELNodeCount);
    for (const QString& bone : mBones)
        names.append(bone);
    return names;
}

uint32_t Characterization::GetNodeFlags(int nodeId) const
{
    return InRange(nodeId) ? mFlags[nodeId] : 0u;
}

void Characterization::SetNodeFlags(int nodeId, uint32_t flags)
{
    if (InRange(nodeId))
        mFlags[nodeId] = flags;
}

const CharacterJointGeometry& Characterization::GetJointGeometry(int nodeId) const
{
    static const CharacterJointGeometry none;
    return InRange(nodeId) ? mGeometry[nodeId] : none;
}

void Characterization::SetJointGeometry(int nodeId, const CharacterJointGeometry& geometry)
{
    if (!InRange(nodeId))
        return;
    mGeometry[nodeId] = geometry;
    if (geometry.GetLimitEnableMask() != 0)
        mFlags[nodeId] |= FullGeometryBits;
}

bool Characterization::IsInverted(int limb) const
{
    return InLimbRange(limb) && mInverted[limb];
}

void Characterization::SetInverted(int limb, bool inverted)
{
    if (InLimbRange(limb))
        mInverted[limb] = inverted;
}

void Characterization::GetLimbFlags(int32_t flags[4]) const
{
    for (int limb = 0; limb < ZELLimbCount; ++limb)
        flags[limb] = mInverted[limb] ? 1 : 0;
}

ZELCharacterDefinition Characterization::BuildDefinition(bool storedFlags) const
{
    ZELCharacterDefinition definition {};
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        if (mBones[nodeId].isEmpty())
            continue;
        definition.mUsedNodes[nodeId] = storedFlags ? (mFlags[nodeId] | 1u) : 1u;
    }
    return definition;
}

bool Characterization::operator==(const Characterization& other) const
{
    return mName == other.mName && mBones == other.mBones && mFlags == other.mFlags &&
           mGeometry == other.mGeometry && mInverted == other.mInverted && mLocked == other.mLocked;
}
