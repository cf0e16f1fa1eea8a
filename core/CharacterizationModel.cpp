#include <zelkin/CharacterizationModel.h>

#include <algorithm>

#include <QAbstractEventDispatcher>
#include <QTimer>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/IDCCHub.h>

#include "SolverCharacter.h"
#include "ValidationRun.h"

namespace
{
using AssignedWords = std::array<uint32_t, ZELNodeCount>;

AssignedWords SnapshotAssigned(const Characterization& characterization)
{
    AssignedWords assigned {};
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
        assigned[nodeId] = characterization.IsAssigned(nodeId) ? 1u : 0u;
    return assigned;
}

// Bones the host no longer knows keep the geometry they had.
void PullHostGeometry(Characterization& characterization, const IDCCHub& hub)
{
    CharacterJointGeometry geometry;
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        if (!characterization.IsAssigned(nodeId))
            continue;
        geometry.Reset();
        if (hub.GetBoneReferenceGeometry(characterization.GetBone(nodeId), geometry) &&
            geometry != characterization.GetJointGeometry(nodeId))
            characterization.SetJointGeometry(nodeId, geometry);
    }
}

bool IsInvertibleBone(int invertibleBone)
{
    return invertibleBone >= IDCCHub::LeftKnee && invertibleBone <= IDCCHub::RightElbow;
}
} // namespace

// Host calls made while the model rewrites a node may run the event loop; the geometry check waits meanwhile.
struct CharacterizationModel::BusyScope
{
    explicit BusyScope(CharacterizationModel& model)
        : mModel(model)
        , mPrevious(model.mBusy)
    {
        model.mBusy = true;
    }
    ~BusyScope() { mModel.mBusy = mPrevious; }

    CharacterizationModel& mModel;
    bool mPrevious;
};

CharacterizationModel::CharacterizationModel(IDCCHub* hub, QObject* parent)
    : CharacterizationModel(nullptr, hub, parent)
{
}

CharacterizationModel::CharacterizationModel(ResourceBridge* bridge, IDCCHub* hub, QObject* parent)
    : QObject(parent)
    , mHub(hub)
    , mBridge(bridge)
    , mTimer(new QTimer(this))
    , mRules(std::make_unique<ValidationRun>())
{
    // A working characterization the host has not been told about: the host's own list replaces it.
    mCharacterizations.push_back(std::make_shared<Characterization>(Characterization::DefaultName()));
    mPlaceholder = mCharacterizations.front().get();
    mCurrent = 0;
    ReloadMirrorPairs();
    if (mHub == nullptr)
        return;
    connect(mHub, SIGNAL(NameChanged(const QString&, const QString&)), this,
            SLOT(RenameBone(const QString&, const QString&)));
    connect(mHub, SIGNAL(NodeRemoved(const QString&)), this, SLOT(RemoveBone(const QString&)));
    connect(mHub, SIGNAL(CharacterizationNodeRemoved(const QString&)), this,
            SLOT(RemoveCharacterizationNode(const QString&)));
    connect(mHub, SIGNAL(CharacterizationNameChanged(const QString&, const QString&)), this,
            SLOT(RenameCharacterization(const QString&, const QString&)));
    connect(mHub, SIGNAL(ReferencePoseChanged()), this, SLOT(FollowReferencePose()));
    connect(mTimer, SIGNAL(timeout()), this, SLOT(CheckGeometry()));
    mTimer->setSingleShot(false);
    // A batch program has no event loop to run the timer; Qt would only warn about it.
    if (QAbstractEventDispatcher::instance(thread()) != nullptr)
        mTimer->start(GeometryCheckInterval);
}

CharacterizationModel::~CharacterizationModel() = default;

QStringList CharacterizationModel::GetCharacterizationNames() const
{
    QStringList names;
    for (const auto& characterization : mCharacterizations)
        names.append(characterization->GetName());
    return names;
}

std::shared_ptr<Characterization> CharacterizationModel::GetCurrentCharacterization() const
{
    if (mCurrent < 0 || mCurrent >= static_cast<int>(mCharacterizations.size()))
        return nullptr;
    return mCharacterizations[mCurrent];
}

std::shared_ptr<Characterization> CharacterizationModel::FindCharacterization(const QString& name) const
{
    const int index = IndexOf(name);
    return index < 0 ? nullptr : mCharacterizations[index];
}

int CharacterizationModel::IndexOf(const QString& name) const
{
    for (size_t i = 0; i < mCharacterizations.size(); ++i)
    {
        if (mCharacterizations[i]->GetName() == name)
            return static_cast<int>(i);
    }
    return -1;
}

int CharacterizationModel::IndexOf(const Characterization* characterization) const
{
    for (size_t i = 0; i < mCharacterizations.size(); ++i)
    {
        if (mCharacterizations[i].get() == characterization)
            return static_cast<int>(i);
    }
    return -1;
}

QString CharacterizationModel::NextCharacterizationName() const
{
    const QString base = Characterization::DefaultName();
    QString name = base;
    for (int number = 2; IndexOf(name) >= 0; ++number)
        name = QStringLiteral("%1 %2").arg(base).arg(number);
    return name;
}

bool CharacterizationModel::IsCreated(const Characterization* characterization) const
{
    return characterization != nullptr && characterization != mPlaceholder;
}

std::shared_ptr<Characterization> CharacterizationModel::CreateCharacterization(const QString& name)
{
    if (name.isEmpty() || IndexOf(name) >= 0)
        return nullptr;
    auto characterization = std::make_shared<Characterization>(name);
    mCharacterizations.push_back(characterization);
    if (mHub != nullptr)
    {
        mHub->RegisterCharacterizationNode(name);
        mHub->CreateDccCharacter(name);
    }
    // The host may have renamed or dropped it while creating its own object.
    return SetCurrentCharacterization(IndexOf(characterization.get())) ? characterization : nullptr;
}

void CharacterizationModel::RemoveAt(int index)
{
    const std::shared_ptr<Characterization> removed = mCharacterizations[index];
    mCharacterizations.erase(mCharacterizations.begin() + index);
    if (removed.get() == mPlaceholder)
        mPlaceholder = nullptr;
    mLastOperations.remove(removed.get());
    if (index == mCurrent)
        mCurrent = -1;
    else if (index < mCurrent)
        --mCurrent;
    if (mHub == nullptr)
        return;
    // Its nodes no longer hold their bones: the host's counts must not keep them mapped.
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        if (removed->IsAssigned(nodeId))
            mHub->DetachHostBone(removed->GetBone(nodeId));
    }
    mHub->UnregisterCharacterizationNode(removed->GetName());
}

void CharacterizationModel::RestoreCurrent(const Characterization* previous)
{
    if (mCharacterizations.empty())
    {
        mCurrent = -1;
        CreateNewCharacterization();
        return;
    }
    const int index = IndexOf(previous);
    if (index < 0)
    {
        mCurrent = -1;
        SetCurrentCharacterization(0);
        return;
    }
    if (index == mCurrent)
    {
        Notify();
        return;
    }
    // Its findings went when another one became current.
    MakeCurrent(index);
    RunValidation(true);
}

bool CharacterizationModel::DeleteCharacterization(int index)
{
    if (index < 0 || index >= static_cast<int>(mCharacterizations.size()))
        return false;
    const std::shared_ptr<Characterization> previous = GetCurrentCharacterization();
    RemoveAt(index);
    RestoreCurrent(previous.get());
    return true;
}

void CharacterizationModel::SyncCharacterizationList(const QStringList& names)
{
    const std::shared_ptr<Characterization> previous = GetCurrentCharacterization();
    QStringList wanted;
    for (const QString& name : names)
    {
        if (!name.isEmpty() && !wanted.contains(name))
            wanted.append(name);
    }
    for (int i = static_cast<int>(mCharacterizations.size()) - 1; i >= 0; --i)
    {
        const QString& name = mCharacterizations[i]->GetName();
        if (!wanted.contains(name) || IndexOf(name) != i)
            RemoveAt(i);
    }
    CharacterizationList ordered;
    for (const QString& name : wanted)
    {
        std::shared_ptr<Characterization> characterization = FindCharacterization(name);
        if (characterization.get() == mPlaceholder)
            mPlaceholder = nullptr; // the host has a character of that name
        if (!characterization)
        {
            characterization = std::make_shared<Characterization>(name);
            if (mHub != nullptr)
                mHub->RegisterCharacterizationNode(name);
        }
        ordered.push_back(characterization);
    }
    mCharacterizations = ordered;
    mCurrent = -1;
    RestoreCurrent(previous.get());
}

bool CharacterizationModel::ReplaceCurrentContent(const Characterization& content)
{
    const std::shared_ptr<Characterization> current = GetCurrentCharacterization();
    if (!current)
        return false;
    Characterization replacement = content;
    replacement.SetName(current->GetName());
    replacement.SetLocked(current->IsLocked());
    *current = replacement;
    RunValidation(true);
    return true;
}

bool CharacterizationModel::ImportIntoCurrent(const Characterization& content)
{
    const std::shared_ptr<Characterization> current = GetCurrentCharacterization();
    if (!current)
        return false;
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        if (current->IsAssigned(nodeId))
            Detach(*current, nodeId, false);
    }
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        if (content.IsAssigned(nodeId))
            Attach(*current, nodeId, content.GetBone(nodeId));
    }
    for (int limb = 0; limb < ZELLimbCount; ++limb)
    {
        if (mHub != nullptr && content.IsInverted(limb) != current->IsInverted(limb))
            mHub->UpdateDccBoneInvertedState(limb, content.IsInverted(limb));
    }
    return ReplaceCurrentContent(content);
}

bool CharacterizationModel::IsEditable() const
{
    const std::shared_ptr<Characterization> current = GetCurrentCharacterization();
    return current && !current->IsLocked();
}

bool CharacterizationModel::AssignBone(int nodeId, const QString& bone)
{
    if (bone.isEmpty())
        return ClearNode(nodeId);
    std::vector<Assignment> batch {{nodeId, bone}};
    if (mMirrorMode && mHub != nullptr)
    {
        const auto exists = [this](const QString& name) { return mHub->BoneExists(name); };
        const MirrorMatcher::Mirrored mirrored = mMirror.MirrorAssignment(nodeId, bone, exists);
        if (mirrored.IsValid())
            batch.emplace_back(mirrored.nodeId, mirrored.bone);
    }
    return AssignBones(batch);
}

bool CharacterizationModel::AssignBones(const std::vector<Assignment>& assignments)
{
    const std::shared_ptr<Characterization> current = GetCurrentCharacterization();
    if (!current)
        return false;
    bool changed = false;
    for (const Assignment& assignment : assignments)
    {
        if (!BoneCatalogue::IsValidNode(assignment.first))
            continue;
        if (assignment.second.isEmpty())
            Detach(*current, assignment.first, false);
        else
            Attach(*current, assignment.first, assignment.second);
        changed = true;
    }
    if (changed)
        Update();
    return changed;
}

bool CharacterizationModel::AssignCharacterizationBone(const QString& characterizationName, int nodeId,
                                                       const QString& bone)
{
    const std::shared_ptr<Characterization> target = FindCharacterization(characterizationName);
    if (!target || !BoneCatalogue::IsValidNode(nodeId))
        return false;
    if (bone.isEmpty())
        Detach(*target, nodeId, false);
    else
        Attach(*target, nodeId, bone);
    if (target == GetCurrentCharacterization())
        Update();
    return true;
}

bool CharacterizationModel::ClearNode(int nodeId)
{
    const std::shared_ptr<Characterization> current = GetCurrentCharacterization();
    if (!current || !BoneCatalogue::IsValidNode(nodeId))
        return false;
    Detach(*current, nodeId, false);
    Update();
    return true;
}

bool CharacterizationModel::ClearNodes(const std::vector<int>& nodeIds)
{
    const std::shared_ptr<Characterization> current = GetCurrentCharacterization();
    if (!current)
        return false;
    for (int nodeId : nodeIds)
    {
        if (BoneCatalogue::IsValidNode(nodeId))
            Detach(*current, nodeId, false);
    }
    mLastOperations[current.get()] = tr("Cleared one or more nodes.");
    Update();
    return true;
}

QString CharacterizationModel::GetAssignedBone(int nodeId) const
{
    const std::shared_ptr<Characterization> current = GetCurrentCharacterization();
    return current ? current->GetBone(nodeId) : QString();
}

std::vector<int> CharacterizationModel::GetUnsyncNodes() const
{
    std::vector<int> nodes;
    const std::shared_ptr<Characterization> current = GetCurrentCharacterization();
    if (!current || mHub == nullptr)
        return nodes;
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        if (current->IsAssigned(nodeId) && !mHub->BoneExists(current->GetBone(nodeId)))
            nodes.push_back(nodeId);
    }
    return nodes;
}

bool CharacterizationModel::IsInverted(int invertibleBone) const
{
    const std::shared_ptr<Characterization> current = GetCurrentCharacterization();
    return current && current->IsInverted(invertibleBone);
}

bool CharacterizationModel::SetInverted(int invertibleBone, bool inverted)
{
    const std::shared_ptr<Characterization> current = GetCurrentCharacterization();
    if (!current || !IsInvertibleBone(invertibleBone))
        return false;
    current->SetInverted(invertibleBone, inverted);
    if (mHub != nullptr)
        mHub->UpdateDccBoneInvertedState(invertibleBone, inverted);
    Update();
    return true;
}

int CharacterizationModel::GetNodeState(int nodeId) const
{
    return BoneCatalogue::IsValidNode(nodeId) ? mMarks[nodeId] : 0;
}

std::string CharacterizationModel::GetNodeMessage(int nodeId) const
{
    return BoneCatalogue::IsValidNode(nodeId) ? mNodeMessages[nodeId] : std::string();
}

void CharacterizationModel::Validate()
{
    RunValidation(true);
}

QString CharacterizationModel::GetLastOperationText() const
{
    return mLastOperations.value(GetCurrentCharacterization().get(), tr("No previous operation."));
}

bool CharacterizationModel::IsLocked() const
{
    const std::shared_ptr<Characterization> current = GetCurrentCharacterization();
    return current && current->IsLocked();
}

void CharacterizationModel::SetEditedPart(int nodeId, bool picked)
{
    if (nodeId != NoPart && !BoneCatalogue::IsValidNode(nodeId))
        return;
    const int previous = mEditedPart;
    mEditedPart = nodeId;
    if (picked && mHub != nullptr && nodeId != NoPart)
    {
        const QString bone = GetAssignedBone(nodeId);
        if (!bone.isEmpty())
            mHub->SelectBones(QStringList {bone});
    }
    if (previous != nodeId)
        emit EditedPartChanged(previous, nodeId, !IsLocked());
}

void CharacterizationModel::RenameBone(const QString& newName, const QString& oldName)
{
    const std::shared_ptr<Characterization> current = GetCurrentCharacterization();
    if (!current || current->IsLocked())
        return;
    // An unassigned node holds no bone, not one with an empty name.
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        if (current->IsAssigned(nodeId) && current->GetBone(nodeId) == oldName)
            current->SetBone(nodeId, newName);
    }
    Update();
}

void CharacterizationModel::RemoveBone(const QString& Name)
{
    if (Name.isEmpty())
        return;
    const std::shared_ptr<Characterization> previous = GetCurrentCharacterization();
    const CharacterizationList all = mCharacterizations; // host calls below may change the list
    for (const auto& characterization : all)
    {
        const int index = IndexOf(characterization.get());
        if (index < 0)
            continue;
        MakeCurrent(index);
        if (characterization->FindNode(Name) >= 0)
        {
            SetLockedState(*characterization, false);
            for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
            {
                if (characterization->GetBone(nodeId) == Name)
                    Detach(*characterization, nodeId, true);
            }
        }
        // The update step; a locked characterization, which it would only announce, is validated as well: its
        // findings went when it became current.
        RunValidation(true);
    }
    RestoreCurrent(previous.get());
}

void CharacterizationModel::RemoveCharacterizationNode(const QString& name)
{
    const std::shared_ptr<Characterization> previous = GetCurrentCharacterization();
    for (int index = IndexOf(name); index >= 0; index = IndexOf(name))
    {
        MakeCurrent(index);
        Notify();
        RemoveAt(index);
    }
    RestoreCurrent(previous.get());
    if (mHub != nullptr)
        mHub->UpdateDccCharacterUI();
}

void CharacterizationModel::RenameCharacterization(const QString& newName, const QString& oldName)
{
    const std::shared_ptr<Characterization> characterization = FindCharacterization(oldName);
    if (!characterization)
        return;
    characterization->SetName(newName);
    Notify();
}

void CharacterizationModel::ClearAll()
{
    const std::shared_ptr<Characterization> current = GetCurrentCharacterization();
    if (!current)
        return;
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
        Detach(*current, nodeId, false);
    mLastOperations[current.get()] = tr("Cleared all nodes.");
    Update();
}

bool CharacterizationModel::SetCurrentCharacterization(int index)
{
    if (index < 0 || index >= static_cast<int>(mCharacterizations.size()))
        return false;
    if (index != mCurrent)
    {
        mCurrent = index;
        ResetFindings();
        const int previousPart = mEditedPart;
        mEditedPart = NoPart;
        if (previousPart != NoPart)
            emit EditedPartChanged(previousPart, NoPart, !IsLocked());
    }
    // Even a locked characterization shows its findings once it becomes current.
    RunValidation(true);
    return true;
}

void CharacterizationModel::SetEditMode(bool readOnly, std::vector<int> unsyncNodeToClear)
{
    const std::shared_ptr<Characterization> current = GetCurrentCharacterization();
    if (!current)
        return;
    for (int nodeId : unsyncNodeToClear)
    {
        if (BoneCatalogue::IsValidNode(nodeId))
            Detach(*current, nodeId, false);
    }
    if (!unsyncNodeToClear.empty())
        mLastOperations[current.get()] = tr("Cleared one or more nodes.");
    SetLockedState(*current, readOnly);
    RunValidation(true);
}

void CharacterizationModel::SetMirrorMode(bool mirror)
{
    mMirrorMode = mirror;
}

void CharacterizationModel::CreateNewCharacterization()
{
    CreateCharacterization(NextCharacterizationName());
}

void CharacterizationModel::CheckGeometry()
{
    if (!mBusy)
        RunValidation(false);
}

void CharacterizationModel::FollowReferencePose()
{
    RunValidation(true);
}

void CharacterizationModel::MakeCurrent(int index)
{
    if (index == mCurrent)
        return;
    mCurrent = index;
    ResetFindings();
}

void CharacterizationModel::SetMark(int nodeId, int32_t mark)
{
    mMarks[nodeId] = mark;
    mNodeMessages[nodeId].clear();
}

void CharacterizationModel::SetLockedState(Characterization& characterization, bool locked)
{
    if (characterization.IsLocked() == locked)
        return;
    characterization.SetLocked(locked);
    if (&characterization == GetCurrentCharacterization().get())
        emit EditedPartChanged(mEditedPart, mEditedPart, !locked);
}

void CharacterizationModel::Attach(Characterization& characterization, int nodeId, const QString& bone)
{
    BusyScope busy(*this);
    const QString previous = characterization.GetBone(nodeId);
    if (!previous.isEmpty() && mHub != nullptr)
        mHub->DetachHostBone(previous);
    characterization.SetBone(nodeId, QString()); // the previous bone's geometry and flags go with it
    characterization.SetBone(nodeId, bone);
    if (&characterization == GetCurrentCharacterization().get())
        SetMark(nodeId, Valid);
    if (mHub != nullptr)
        mHub->AttachHostBone(bone);
    mLastOperations[&characterization] = QStringLiteral("%1%2").arg(tr("Assigned node: "), bone);
    if (mHub != nullptr)
        mHub->UpdateDccCharacterSkeleton(previous, bone, characterization.GetName(), nodeId, false);
}

void CharacterizationModel::Detach(Characterization& characterization, int nodeId, bool fromHost)
{
    BusyScope busy(*this);
    const QString previous = characterization.GetBone(nodeId);
    if (!previous.isEmpty())
    {
        if (mHub != nullptr)
            mHub->DetachHostBone(previous);
        mLastOperations[&characterization] = QStringLiteral("%1%2").arg(tr("Unregistered node: "), previous);
    }
    characterization.SetBone(nodeId, QString());
    if (&characterization == GetCurrentCharacterization().get())
        SetMark(nodeId, NotValidated);
    if (mHub != nullptr)
        mHub->UpdateDccCharacterSkeleton(previous, QString(), characterization.GetName(), nodeId, fromHost);
}

void CharacterizationModel::Update()
{
    if (IsLocked())
        Notify();
    else
        RunValidation(true);
}

void CharacterizationModel::RunValidation(bool notify)
{
    const std::shared_ptr<Characterization> current = GetCurrentCharacterization();
    if (!current)
    {
        ResetFindings();
        if (notify)
            Notify();
        return;
    }
    if (mHub != nullptr && !current->IsLocked())
        PullHostGeometry(*current, *mHub);
    const AssignedWords assigned = SnapshotAssigned(*current);

    std::function<void(ValidationLog&)> hostValidate;
    if (mHub != nullptr)
        hostValidate = [this](ValidationLog& log) { mHub->CharacterizationDCCValidate(log); };
    ValidationOutcome outcome;
    {
        const SolverCharacter character(*current);
        outcome = mRules->Run(assigned.data(), character.Get(), hostValidate);
    }

    if (assigned != mLastAssigned)
        mChanged = true;
    mLastAssigned = assigned;
    const bool findingsChanged = outcome.state != mState || outcome.message != mMessage || outcome.marks != mMarks ||
                                 outcome.nodeMessages != mNodeMessages;
    if (findingsChanged)
    {
        mState = outcome.state;
        mMessage = std::move(outcome.message);
        mMarks = outcome.marks;
        mNodeMessages = std::move(outcome.nodeMessages);
    }
    if (notify || mChanged || findingsChanged)
        Notify();
}

void CharacterizationModel::ResetFindings()
{
    mState = NotValidated;
    mMessage.clear();
    mMarks.fill(0);
    for (std::string& message : mNodeMessages)
        message.clear();
}

void CharacterizationModel::Notify()
{
    mChanged = false;
    emit ModelChanged();
}
