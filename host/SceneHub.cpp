#include "SceneHub.h"

#include <string>

#include <zelkin/Characterization.h>
#include <zelkin/CharacterTool.h>
#include <zelkin/CharacterizationModel.h>

#include "Scene.h"

namespace {

std::string ScaleMessage(const SceneBone& bone)
{
    QVector3D translation;
    QQuaternion rotation;
    QVector3D scale;
    bone.DecomposeGlobal(translation, rotation, scale);
    return QStringLiteral("Bone %1 has a non-uniform scale (%2, %3, %4); its reference pose may be distorted.")
        .arg(bone.name)
        .arg(double(scale.x()), 0, 'f', 6)
        .arg(double(scale.y()), 0, 'f', 6)
        .arg(double(scale.z()), 0, 'f', 6)
        .toStdString();
}

} // namespace

SceneHub::SceneHub(Scene& scene)
    : mScene(scene)
{
}

int SceneHub::GetAttachCount(const QString& bone) const
{
    const SceneBone* found = mScene.Find(bone);
    return found == nullptr ? 0 : found->attachCount;
}

bool SceneHub::RenameBone(const QString& oldName, const QString& newName)
{
    return ApplyRename(oldName, SanitizeBoneName(newName));
}

bool SceneHub::ApplyRename(const QString& oldName, const QString& newName)
{
    if (!mScene.RenameBone(oldName, newName))
        return false;
    emit NameChanged(newName, oldName);
    CharacterizationModel* model = GetCharacterTool() != nullptr ? GetCharacterTool()->GetModel() : nullptr;
    if (model == nullptr)
        return true;
    bool currentChanged = false;
    for (const std::shared_ptr<Characterization>& characterization : model->GetCharacterizations())
    {
        for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
        {
            if (characterization->GetBone(nodeId) != oldName)
                continue;
            characterization->SetBone(nodeId, newName);
            currentChanged = currentChanged || characterization == model->GetCurrentCharacterization();
        }
    }
    // A locked current one is not validated again by the model; its views still show the old name.
    if (currentChanged)
        model->Validate();
    return true;
}

bool SceneHub::DeleteBone(const QString& name)
{
    const bool selected = mScene.Selection().contains(name);
    if (!mScene.DeleteBone(name))
        return false;
    emit NodeRemoved(name);
    if (selected)
        emit selectionChanged();
    return true;
}

bool SceneHub::RenameCharacterObject(const QString& oldName, const QString& newName)
{
    if (!mScene.RenameCharacter(oldName, newName))
        return false;
    emit CharacterizationNameChanged(newName, oldName);
    return true;
}

bool SceneHub::DeleteCharacterObject(const QString& name)
{
    if (!mScene.DeleteCharacter(name))
        return false;
    emit CharacterizationNodeRemoved(name);
    return true;
}

void SceneHub::SetLocalTransforms(const std::vector<std::pair<int, QMatrix4x4>>& locals)
{
    mScene.SetLocalTransforms(locals);
    emit ReferencePoseChanged();
}

void SceneHub::RestoreTransforms(const std::vector<Scene::SavedTransforms>& saved)
{
    mScene.RestoreTransforms(saved);
    emit ReferencePoseChanged();
}

bool SceneHub::GetSelectedBones(QStringList& bones) const
{
    bones = mScene.Selection();
    return true;
}

bool SceneHub::SelectBones(const QStringList& bones)
{
    const QStringList before = mScene.Selection();
    if (!mScene.SetSelection(bones))
        return false;
    if (mScene.Selection() != before)
        emit selectionChanged();
    return true;
}

bool SceneHub::GetSceneBones(QStringList& bones) const
{
    bones = mScene.BoneNames();
    return true;
}

bool SceneHub::BoneExists(const QString& bone) const
{
    return mScene.IndexOf(bone) >= 0;
}

bool SceneHub::GetBoneReferenceGeometry(const QString& bone, CharacterJointGeometry& geometry) const
{
    const SceneBone* found = mScene.Find(bone);
    if (found == nullptr)
        return false;
    QVector3D translation;
    QQuaternion rotation;
    QVector3D scale;
    found->DecomposeGlobal(translation, rotation, scale);
    const QQuaternion& pre = found->preRotation;
    geometry.Reset();
    geometry.SetTranslate(translation.x(), translation.y(), translation.z());
    geometry.SetRotateQ(rotation.x(), rotation.y(), rotation.z(), rotation.scalar());
    geometry.SetScale(scale.x(), scale.y(), scale.z());
    geometry.SetPreRotQ(pre.x(), pre.y(), pre.z(), pre.scalar());
    geometry.SetRotationOrder(found->rotationOrder);
    return true;
}

bool SceneHub::AttachHostBone(const QString& bone)
{
    SceneBone* found = mScene.Find(bone);
    if (found == nullptr)
        return false;
    ++found->attachCount;
    emit BoneMarkChanged(bone);
    return true;
}

bool SceneHub::DetachHostBone(const QString& bone)
{
    SceneBone* found = mScene.Find(bone);
    if (found == nullptr || found->attachCount == 0)
        return false;
    --found->attachCount;
    emit BoneMarkChanged(bone);
    return true;
}

QString SceneHub::GetBoneParent(const QString& bone) const
{
    const SceneBone* found = mScene.Find(bone);
    if (found == nullptr || found->parent < 0)
        return QString();
    return mScene.Bone(found->parent).name;
}

bool SceneHub::CreateDccCharacter(const QString& characterName)
{
    return mScene.AddCharacter(characterName) || mScene.HasCharacter(characterName);
}

void SceneHub::CharacterizationDCCValidate(ValidationLog& log)
{
    int scaled = 0;
    for (int i = 0; i < mScene.BoneCount(); ++i)
    {
        const SceneBone& bone = mScene.Bone(i);
        if (bone.attachCount == 0 || !bone.HasNonUniformScale(ScaleTolerance))
            continue;
        log.LogWarning(bone.node, ScaleMessage(bone));
        ++scaled;
    }
    if (scaled == 0)
        log.SetValidationState(Valid, std::string());
    else
        log.SetValidationState(Warning, "Mapped bones with non-uniform scale.");
}

void SceneHub::UpdateDccCharacterSkeleton(const QString& oldBone, const QString& newBone, const QString&, int nodeId,
                                          bool)
{
    SceneBone* previous = mScene.Find(oldBone);
    if (previous != nullptr && previous->attachCount == 0)
        previous->node = -1;
    SceneBone* current = mScene.Find(newBone);
    if (current != nullptr)
        current->node = nodeId;
}

void SceneHub::RegisterCharacterizationNode(const QString& characterName)
{
    mScene.AddCharacter(characterName);
}

void SceneHub::UnregisterCharacterizationNode(const QString& characterName)
{
    mScene.DeleteCharacter(characterName);
}

QString SceneHub::SanitizeBoneName(const QString& bone) const
{
    QString sanitized;
    sanitized.reserve(bone.size());
    for (const QChar c : bone)
    {
        if (c.isLetter() || c.isDigit() || c == QLatin1Char('_') || c == QLatin1Char(':') || c == QLatin1Char('.') ||
            c == QLatin1Char('-'))
            sanitized.append(c);
    }
    return sanitized;
}

bool SceneHub::DescribeSkeleton(std::vector<SkeletonRecognizer::Bone>& bones) const
{
    bool skinned = false;
    for (int i = 0; i < mScene.BoneCount() && !skinned; ++i)
        skinned = mScene.Bone(i).skinsMesh;
    bones.assign(size_t(mScene.BoneCount()), SkeletonRecognizer::Bone());
    for (int i = 0; i < mScene.BoneCount(); ++i)
    {
        const SceneBone& from = mScene.Bone(i);
        SkeletonRecognizer::Bone& bone = bones[size_t(i)];
        bone.name = from.name;
        bone.parent = from.parent;
        const QVector4D joint = from.global.column(3);
        bone.position = {joint.x(), joint.y(), joint.z()};
        if (skinned)
            bone.skinning = from.skinsMesh ? SkeletonRecognizer::Skinning::Skins
                                           : SkeletonRecognizer::Skinning::DoesNotSkin;
        if (from.hasTip)
        {
            const QVector4D tip = from.global.column(0) * from.tip.x() + from.global.column(1) * from.tip.y() +
                                  from.global.column(2) * from.tip.z() + joint;
            bone.hasTip = true;
            bone.tip = {tip.x(), tip.y(), tip.z()};
        }
    }
    return true;
}
