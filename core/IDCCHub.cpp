#include <zelkin/IDCCHub.h>

#include <QHash>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/CharacterTool.h>
#include <zelkin/CharacterizationModel.h>

namespace
{
// The panel is reached through its meta-object, so that a host without it (the command line) need not load Qt's
// widget libraries just to link the hub.
template <typename... Arguments>
bool Ask(CharacterTool* tool, const char* operation, Arguments... arguments)
{
    return tool != nullptr && QMetaObject::invokeMethod(tool, operation, Qt::DirectConnection, arguments...);
}
} // namespace

static_assert(int(IDCCHub::LeftKnee) == int(ZELLimbLeftLeg) && int(IDCCHub::RightKnee) == int(ZELLimbRightLeg) &&
                  int(IDCCHub::LeftElbow) == int(ZELLimbLeftArm) && int(IDCCHub::RightElbow) == int(ZELLimbRightArm),
              "an invertible bone selects the limb flag of its limb");

namespace
{
bool IsInvertibleBone(IDCCHub::InvertibleBone bone)
{
    return bone >= IDCCHub::LeftKnee && bone <= IDCCHub::RightElbow;
}
} // namespace

IDCCHub::IDCCHub() = default;

IDCCHub::~IDCCHub() = default;

void IDCCHub::CharacterizationDCCValidate(ValidationLog& log)
{
    log.SetValidationState(Valid, std::string());
}

IDCCHub::RollBoneValidation IDCCHub::CheckSelectedNodeForRollBone(int)
{
    return RollBoneAccepted;
}

void IDCCHub::UpdateDccCharacterSkeleton(const QString&, const QString&, const QString&, int, bool)
{
}

void IDCCHub::UpdateDccDeleteCharacter(const QString&)
{
}

void IDCCHub::UpdateDccCharacterUI()
{
}

void IDCCHub::RegisterCharacterizationNode(const QString&)
{
}

void IDCCHub::UnregisterCharacterizationNode(const QString&)
{
}

void IDCCHub::UpdateDccBoneInvertedState(int, bool)
{
}

bool IDCCHub::PostCharacterUpdate(const QString&)
{
    return false;
}

QString IDCCHub::SanitizeBoneName(const QString& bone) const
{
    return bone;
}

void IDCCHub::SetCharacterState(ZELCharacter*, ZELCharacterState*)
{
}

bool IDCCHub::DescribeSkeleton(std::vector<SkeletonRecognizer::Bone>& bones) const
{
    QStringList names;
    if (!GetSceneBones(names))
        return false;
    QHash<QString, int> indices;
    bones.clear();
    bones.reserve(names.size());
    for (const QString& name : names)
    {
        SkeletonRecognizer::Bone bone;
        bone.name = name;
        bone.parent = indices.value(GetBoneParent(name), -1);
        CharacterJointGeometry geometry;
        if (GetBoneReferenceGeometry(name, geometry))
            bone.position = {geometry.GetTranslate()[0], geometry.GetTranslate()[1], geometry.GetTranslate()[2]};
        indices.insert(name, int(bones.size()));
        bones.push_back(bone);
    }
    return true;
}

void IDCCHub::setCharacterTool(CharacterTool* tool)
{
    mTool = tool;
}

CharacterizationModel* IDCCHub::Model() const
{
    return mTool != nullptr ? mTool->GetModel() : nullptr;
}

bool IDCCHub::AssignCharacterBone(const QString& characterName, int nodeId, const QString& bone, bool refresh)
{
    CharacterizationModel* model = Model();
    if (characterName.isEmpty() || model == nullptr)
        return false;
    if (refresh)
        model->CheckGeometry();
    return model->AssignCharacterizationBone(characterName, nodeId, bone);
}

bool IDCCHub::GetNodeAssignedToCharacterBone(const QString& characterName, int nodeId, QString& bone) const
{
    const CharacterizationModel* model = Model();
    if (model == nullptr || !BoneCatalogue::IsValidNode(nodeId))
        return false;
    const std::shared_ptr<Characterization> characterization = model->FindCharacterization(characterName);
    if (!characterization)
        return false;
    bone = characterization->GetBone(nodeId);
    return true;
}

bool IDCCHub::GetBoneInvertedState(const QString& characterName, InvertibleBone bone, bool& inverted) const
{
    inverted = false;
    const CharacterizationModel* model = Model();
    if (model == nullptr || !IsInvertibleBone(bone))
        return false;
    const std::shared_ptr<Characterization> characterization = model->FindCharacterization(characterName);
    if (!characterization)
        return false;
    inverted = characterization->IsInverted(bone);
    return true;
}

bool IDCCHub::SetBoneInvertedState(const QString& characterName, InvertibleBone bone, bool inverted)
{
    CharacterizationModel* model = Model();
    if (model == nullptr || !IsInvertibleBone(bone))
        return false;
    const std::shared_ptr<Characterization> characterization = model->FindCharacterization(characterName);
    if (!characterization)
        return false;
    characterization->SetInverted(bone, inverted);
    if (characterization == model->GetCurrentCharacterization())
        emit model->ModelChanged();
    return true;
}

void IDCCHub::Lock(bool lock)
{
    CharacterizationModel* model = Model();
    if (model == nullptr)
        return;
    model->CheckGeometry();
    Ask(mTool, "DoToggleEditMode", Q_ARG(bool, lock));
}

bool IDCCHub::IsLocked() const
{
    const CharacterizationModel* model = Model();
    return model != nullptr && model->IsLocked();
}

void IDCCHub::MirrorMatching()
{
    if (mTool != nullptr)
        Ask(mTool, "ToggleMirrorMode");
}

void IDCCHub::ShowMapBones()
{
    if (Model() != nullptr)
        Ask(mTool, "AutoMatch");
}

void IDCCHub::ShowConfigureMirrorMatching()
{
    if (Model() != nullptr)
        Ask(mTool, "ConfigMirror");
}

void IDCCHub::ShowSaveCharacterization()
{
    if (Model() != nullptr)
        Ask(mTool, "OnSave");
}

void IDCCHub::ShowExtractMappingTemplate()
{
    if (Model() != nullptr)
        Ask(mTool, "ExtractTemplate");
}

bool IDCCHub::IsMirrorToggle() const
{
    const CharacterizationModel* model = Model();
    return model != nullptr && model->IsMirrorMode();
}

bool IDCCHub::GetCharacterList(QList<QString>& names) const
{
    names.clear();
    const CharacterizationModel* model = Model();
    if (model == nullptr)
        return false;
    names = model->GetCharacterizationNames();
    return true;
}

void IDCCHub::UpdateCharacterList(const QList<QString>& names)
{
    if (CharacterizationModel* model = Model())
        model->SyncCharacterizationList(names);
}

bool IDCCHub::SetCurrentCharacter(const QString& characterName)
{
    if (!IsCharacterCreated(characterName))
        return false;
    CharacterizationModel* model = Model();
    return model->SetCurrentCharacterization(model->IndexOf(characterName));
}

bool IDCCHub::IsCharacterCreated(const QString& characterName) const
{
    const CharacterizationModel* model = Model();
    return model != nullptr && model->IndexOf(characterName) >= 0;
}

bool IDCCHub::DeleteCharacter(const QString& characterName, bool confirm)
{
    CharacterizationModel* model = Model();
    if (model == nullptr)
        return false;
    const int index = model->IndexOf(characterName);
    if (index < 0)
        return false;
    const std::shared_ptr<Characterization> previous = model->GetCurrentCharacterization();
    model->SetCurrentCharacterization(index);
    bool deleted = false;
    if (Ask(mTool, "DoDelete", Q_RETURN_ARG(bool, deleted), Q_ARG(bool, confirm)) && deleted)
        return true;
    model->SetCurrentCharacterization(model->IndexOf(previous.get()));
    return false;
}

bool IDCCHub::DeleteAllCharacters(bool confirm)
{
    QList<QString> names;
    if (!GetCharacterList(names))
        return false;
    bool all = true;
    for (const QString& name : names)
        all = DeleteCharacter(name, confirm) && all;
    return all;
}

void IDCCHub::DeleteCurrentCharacter()
{
    if (Model() != nullptr)
        Ask(mTool, "OnDelete");
}

QString IDCCHub::GetCurrentCharacterNodeName() const
{
    const CharacterizationModel* model = Model();
    if (model == nullptr)
        return QString();
    // A characterization the host has not created has no node of its own yet: it goes by the default name.
    const std::shared_ptr<Characterization> current = model->GetCurrentCharacterization();
    if (current && model->IsCreated(current.get()) && !current->GetName().isEmpty())
        return current->GetName();
    return GetDefaultCharacterNodeName();
}

QString IDCCHub::GetDefaultCharacterNodeName() const
{
    const CharacterizationModel* model = Model();
    return model != nullptr ? model->NextCharacterizationName() : QString();
}

IDCCHub::CharacterizationState IDCCHub::CurrentCharacterizationState(bool refresh)
{
    CharacterizationModel* model = Model();
    if (model == nullptr || !model->GetCurrentCharacterization())
        return CharacterizationInvalid;
    if (refresh)
        model->CheckGeometry();
    if (model->IsLocked())
        return CharacterizationLocked;
    const ValidationState state = model->GetValidationState();
    return state == Valid || state == Warning ? CharacterizationUnlocked : CharacterizationInvalid;
}
