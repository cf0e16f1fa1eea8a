#include "TestHub.h"

void TestHub::AddBone(const QString& name, const QString& parent, float x, float y, float z)
{
    CharacterJointGeometry geometry;
    geometry.SetTranslate(x, y, z);
    AddBone(name, parent, geometry);
}

void TestHub::AddBone(const QString& name, const QString& parent, const CharacterJointGeometry& geometry)
{
    mIndex.insert(name, static_cast<int>(mBones.size()));
    mBones.push_back({name, parent, geometry});
}

void TestHub::MoveBone(const QString& name, float x, float y, float z)
{
    const auto found = mIndex.constFind(name);
    if (found != mIndex.constEnd())
        mBones[*found].geometry.SetTranslate(x, y, z);
}

void TestHub::RenameSceneBone(const QString& oldName, const QString& newName, bool notify)
{
    for (Bone& bone : mBones)
    {
        if (bone.name == oldName)
            bone.name = newName;
        if (bone.parent == oldName)
            bone.parent = newName;
    }
    Reindex();
    if (notify)
        emit NameChanged(newName, oldName);
}

void TestHub::RemoveSceneBone(const QString& name, bool notify)
{
    const auto found = mIndex.constFind(name);
    if (found == mIndex.constEnd())
        return;
    const QString parent = mBones[*found].parent;
    mBones.erase(mBones.begin() + *found);
    for (Bone& bone : mBones)
    {
        if (bone.parent == name)
            bone.parent = parent;
    }
    Reindex();
    if (notify)
        emit NodeRemoved(name);
}

void TestHub::Reindex()
{
    mIndex.clear();
    for (size_t i = 0; i < mBones.size(); ++i)
        mIndex.insert(mBones[i].name, static_cast<int>(i));
}

bool TestHub::GetSelectedBones(QStringList& bones) const
{
    bones = selection;
    return true;
}

bool TestHub::SelectBones(const QStringList& bones)
{
    selection = bones;
    journal.append(QStringLiteral("Select:") + bones.join(QLatin1Char(',')));
    return true;
}

bool TestHub::GetSceneBones(QStringList& bones) const
{
    bones.clear();
    for (const Bone& bone : mBones)
        bones.append(bone.name);
    return true;
}

bool TestHub::BoneExists(const QString& bone) const
{
    return mIndex.contains(bone);
}

bool TestHub::GetBoneReferenceGeometry(const QString& bone, CharacterJointGeometry& geometry) const
{
    ++geometryRequests;
    const auto found = mIndex.constFind(bone);
    if (found == mIndex.constEnd())
        return false;
    geometry = mBones[*found].geometry;
    return true;
}

bool TestHub::AttachHostBone(const QString& bone)
{
    journal.append(QStringLiteral("Attach:") + bone);
    return true;
}

bool TestHub::DetachHostBone(const QString& bone)
{
    journal.append(QStringLiteral("Detach:") + bone);
    return true;
}

QString TestHub::GetBoneParent(const QString& bone) const
{
    const auto found = mIndex.constFind(bone);
    return found == mIndex.constEnd() ? QString() : mBones[*found].parent;
}

bool TestHub::CreateDccCharacter(const QString& characterName)
{
    journal.append(QStringLiteral("Create:") + characterName);
    return true;
}

void TestHub::CharacterizationDCCValidate(ValidationLog& log)
{
    if (hostValidation)
        hostValidation(log);
    else
        IDCCHub::CharacterizationDCCValidate(log);
}

void TestHub::UpdateDccCharacterSkeleton(const QString& oldBone, const QString& newBone, const QString& characterName,
                                         int nodeId, bool fromHost)
{
    journal.append(QStringLiteral("Skeleton:%1|%2|%3|%4|%5")
                       .arg(oldBone, newBone, characterName)
                       .arg(nodeId)
                       .arg(fromHost ? 1 : 0));
}

void TestHub::UpdateDccDeleteCharacter(const QString& characterName)
{
    journal.append(QStringLiteral("Delete:") + characterName);
}

void TestHub::UpdateDccCharacterUI()
{
    journal.append(QStringLiteral("UI"));
}

void TestHub::RegisterCharacterizationNode(const QString& characterName)
{
    journal.append(QStringLiteral("Register:") + characterName);
}

void TestHub::UnregisterCharacterizationNode(const QString& characterName)
{
    journal.append(QStringLiteral("Unregister:") + characterName);
}

void TestHub::UpdateDccBoneInvertedState(int invertibleBone, bool inverted)
{
    journal.append(QStringLiteral("Inverted:%1|%2").arg(invertibleBone).arg(inverted ? 1 : 0));
}
