#include "BoneAssignment.h"

#include <vector>

#include <QMessageBox>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/CharacterizationModel.h>
#include <zelkin/IDCCHub.h>

#include "DialogParent.h"

namespace
{
QString NodeName(int nodeId)
{
    return QString::fromLatin1(BoneCatalogue::NodeName(nodeId));
}
} // namespace

BoneAssignment::BoneAssignment(QWidget* view, IDCCHub* hub, CharacterizationModel* model)
    : mView(view)
    , mHub(hub)
    , mModel(model)
{
}

BoneAssignment::Editability BoneAssignment::GetEditability() const
{
    if (mModel == nullptr || !mModel->GetCurrentCharacterization())
        return NotCreated;
    // The host stands in its placeholder name for a characterization it has not created.
    if (mHub != nullptr && mHub->GetCurrentCharacterNodeName() == mHub->GetDefaultCharacterNodeName())
        return NotCreated;
    return mModel->IsLocked() ? Locked : Editable;
}

bool BoneAssignment::ConfirmEditable() const
{
    switch (GetEditability())
    {
    case Editable:
        return true;
    case NotCreated:
        QMessageBox::warning(DialogParent(mView), tr("Characterization Not Created"),
                             tr("You must create a new characterization before you can edit its bone mappings."),
                             QMessageBox::Ok);
        return false;
    case Locked:
        QMessageBox::warning(DialogParent(mView), tr("Characterization Locked"),
                             tr("The current characterization is locked.\nYou must unlock it before you can edit its "
                                "bone mappings."),
                             QMessageBox::Ok);
        return false;
    }
    return false;
}

bool BoneAssignment::Assign(int nodeId, const QString& bone)
{
    if (bone.isEmpty() || !BoneCatalogue::IsValidNode(nodeId) || !IsEditable())
        return false;
    if (!AssignOne(nodeId, bone, false))
        return false;
    if (mModel->IsMirrorMode())
    {
        const auto exists = [this](const QString& name) { return mHub == nullptr || mHub->BoneExists(name); };
        const MirrorMatcher::Mirrored mirrored = mMirror.MirrorAssignment(nodeId, bone, exists);
        if (mirrored.IsValid())
            AssignOne(mirrored.nodeId, mirrored.bone, true);
    }
    mModel->SetEditedPart(nodeId, false);
    return true;
}

bool BoneAssignment::AssignOne(int nodeId, const QString& bone, bool mirrored)
{
    const QString current = mModel->GetAssignedBone(nodeId);
    if (current == bone)
        return false;
    const QString title = mirrored ? tr("Mirroring: Bone Already Assigned") : tr("Bone Already Assigned");
    if (!current.isEmpty() &&
        !Ask(title, tr("\"%1\" is assigned to bone \"%2\".\nChange to \"%3\"?").arg(NodeName(nodeId), current, bone),
             QMessageBox::Yes, QMessageBox::No))
        return false;

    std::vector<CharacterizationModel::Assignment> batch;
    for (int other = 0; other < BoneCatalogue::NodeCount; ++other)
    {
        if (other != nodeId && mModel->GetAssignedBone(other) == bone)
            batch.emplace_back(other, QString());
    }
    if (!batch.empty() &&
        !Ask(title, tr("Bone \"%1\" is being used for the \"%2\".\nClear?").arg(bone, NodeName(batch.front().first)),
             QMessageBox::Ok, QMessageBox::Cancel))
        return false;
    // The other nodes are cleared first, in the same batch, so validation runs once.
    batch.emplace_back(nodeId, bone);
    return mModel->AssignBones(batch);
}

bool BoneAssignment::Ask(const QString& title, const QString& text, int yes, int no) const
{
    const auto buttons = QMessageBox::StandardButtons(yes | no);
    return QMessageBox::question(DialogParent(mView), title, text, buttons, QMessageBox::StandardButton(yes)) == yes;
}

bool BoneAssignment::ApplyEnteredName(int nodeId, const QString& text)
{
    if (!BoneCatalogue::IsValidNode(nodeId) || !IsEditable())
        return false;
    const QString bone = text.trimmed();
    if (bone.isEmpty())
        return !mModel->GetAssignedBone(nodeId).isEmpty() && mModel->ClearNode(nodeId);
    if (mHub != nullptr && !mHub->BoneExists(bone))
    {
        QMessageBox::warning(DialogParent(mView), tr("Unknown Bone"),
                             tr("There is no bone \"%1\" in the scene.").arg(bone), QMessageBox::Ok);
        return false;
    }
    return Assign(nodeId, bone);
}

int BoneAssignment::InvertibleBoneOf(int nodeId)
{
    switch (nodeId)
    {
    case 3:
        return IDCCHub::LeftKnee;
    case 6:
        return IDCCHub::RightKnee;
    case 10:
        return IDCCHub::LeftElbow;
    case 13:
        return IDCCHub::RightElbow;
    default:
        return -1;
    }
}

bool BoneAssignment::ToggleInversion(int nodeId)
{
    const int invertible = InvertibleBoneOf(nodeId);
    if (invertible < 0 || !IsEditable())
        return false;
    return mModel->SetInverted(invertible, !mModel->IsInverted(invertible));
}
