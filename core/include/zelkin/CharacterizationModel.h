#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationExport.h>
#include <zelkin/MirrorMatcher.h>
#include <zelkin/NameMatcher.h>
#include <zelkin/SkeletonRecognizer.h>
#include <zelkin/ValidationLog.h>

class IDCCHub;
class MappingTemplate;
class QTimer;
class ResourceBridge;
class TemplateChooser;
class TemplateLibrary;
class ValidationRun;

// The characterizations the tool edits, the current one, its validation marks, the edited part and the edit and
// mirror modes. Views read it and call its operations; the host's hub signals reach it as slot calls.
class ZELKIN_CHARACTERIZATION_EXPORT CharacterizationModel : public QObject
{
    Q_OBJECT

public:
    using CharacterizationList = std::vector<std::shared_ptr<Characterization>>;
    using Assignment = std::pair<int, QString>;

    static constexpr int NoPart = -1;
    static constexpr int GeometryCheckInterval = 1000; // ms

    // Without a hub the model follows no host and runs no geometry check. Without a bridge it matches names with
    // the default settings and the templates of the per-user folder, and mirrors by "Right"/"Left" alone.
    explicit CharacterizationModel(IDCCHub* hub, QObject* parent = nullptr);
    CharacterizationModel(ResourceBridge* bridge, IDCCHub* hub, QObject* parent = nullptr);
    ~CharacterizationModel() override;

    IDCCHub* GetHub() const { return mHub; }
    ResourceBridge* GetBridge() const { return mBridge; }

    const CharacterizationList& GetCharacterizations() const { return mCharacterizations; }
    QStringList GetCharacterizationNames() const;
    int GetCurrentIndex() const { return mCurrent; }
    std::shared_ptr<Characterization> GetCurrentCharacterization() const;
    // First characterization of that exact name.
    std::shared_ptr<Characterization> FindCharacterization(const QString& name) const;
    int IndexOf(const QString& name) const;
    int IndexOf(const Characterization* characterization) const;
    // The default name, numbered when it is taken.
    QString NextCharacterizationName() const;
    // Whether the host has this characterization. The working one the model starts with stands in for the host's
    // placeholder character until the host lists it or it makes way for one the host has.
    bool IsCreated(const Characterization* characterization) const;
    // Adds, announces to the host and makes current; null when the name is empty or taken.
    std::shared_ptr<Characterization> CreateCharacterization(const QString& name);
    // Removes it; keeps the first one current when the current one went, and never leaves the list empty.
    bool DeleteCharacterization(int index);
    // Follows the host's list of character names: drops the others, adds the missing ones, takes the host's order.
    void SyncCharacterizationList(const QStringList& names);
    // Replaces the current characterization's mapping, geometry and flags, keeping its name and lock. The host is
    // not told: it is for restoring what the host itself stored.
    bool ReplaceCurrentContent(const Characterization& content);
    // The same for a mapping from elsewhere (a file): the host detaches the old bones and attaches the new ones.
    bool ImportIntoCurrent(const Characterization& content);

    // Assignment on the current characterization, locked or not: a locked one is only announced, not validated.
    // Refusing the user's edits of a locked characterization is for the views. In mirror mode AssignBone also
    // gives the counterpart bone to the opposite node (AssignBones never mirrors: callers that ask the user first
    // mirror for themselves, see GetMirrorMatcher).
    bool AssignBone(int nodeId, const QString& bone);
    // One validation for the whole batch; an empty bone clears its node.
    bool AssignBones(const std::vector<Assignment>& assignments);
    // The same on the characterization of that exact name, current or not (the host's scripting); an empty bone
    // clears the node. False when there is no such characterization or node.
    bool AssignCharacterizationBone(const QString& characterizationName, int nodeId, const QString& bone);
    bool ClearNode(int nodeId);
    bool ClearNodes(const std::vector<int>& nodeIds);
    QString GetAssignedBone(int nodeId) const;
    // Mapped nodes whose bones the host no longer has.
    std::vector<int> GetUnsyncNodes() const;

    // The keyword pairs of the configuration ("mirror_list"/"mirror"), read again after they were edited.
    const MirrorMatcher& GetMirrorMatcher() const { return mMirror; }
    void ReloadMirrorPairs();

    // Name matching as the configuration sets it.
    NameMatcher::MatchType GetMatchType() const;
    QStringList GetNameDelimiters() const;
    // The longest start that all the bones share, cut back to its last delimiter so that it never ends inside a
    // word ("mixamorig:" for "mixamorig:Hips" and "mixamorig:Spine", "" for "LeftArm" and "LeftLeg").
    QString CommonBonePrefix(const QStringList& bones) const;
    // Maps the offered bones (scene order, parents first) by the template. Bones that some node already holds
    // keep it. The number of nodes that got a bone; -1 when the characterization cannot be edited.
    int ApplyTemplate(const MappingTemplate& mappingTemplate, NameMatcher::MatchType type,
                      const QStringList& offeredBones, const QString& prefix);
    // The shipped templates and those of the configuration's template folder.
    TemplateLibrary GetTemplateLibrary() const;
    // The template that maps the most of the scene (required nodes first), over every scene bone.
    std::unique_ptr<TemplateChooser> CreateTemplateChooser() const;
    // Applies that template to every scene bone; the number of nodes it mapped.
    int ApplyBestTemplate();
    // Scene bones (in scene order) without children.
    QSet<QString> GetLeafBones(const QStringList& sceneBones) const;

    // Automatic characterization: the humanoids in the host's skeleton (IDCCHub::DescribeSkeleton), with the
    // template library as one more reader of bone names. `bones` receives the skeleton as read. Nothing without a
    // hub.
    SkeletonRecognizer::Result RecognizeSkeleton(std::vector<SkeletonRecognizer::Bone>& bones) const;
    // The character holding the first of the host's selected bones that belongs to one, else (with
    // `orFirst`) the first; -1 when there is none.
    int SelectedCharacter(const SkeletonRecognizer::Result& result, const std::vector<SkeletonRecognizer::Bone>& bones,
                          bool orFirst = true) const;
    // How a recognized mapping meets what the current characterization already holds.
    enum class Merge
    {
        KeepExisting,     // only empty nodes get bones, and only bones no node holds
        PreferRecognized, // the recognized nodes get their bones, taken from other nodes if need be
        ReplaceAll        // the recognized mapping and nothing else
    };
    // Gives the current characterization a recognized character's mapping in one batch. The number of nodes that
    // got a new bone; -1 when the characterization cannot be edited.
    int ApplyRecognition(const SkeletonRecognizer::Character& character,
                         const std::vector<SkeletonRecognizer::Bone>& bones, Merge merge);
    // How many nodes that hold a bone now would hold another one, or lose theirs, if the recognized mapping were
    // preferred.
    int RecognitionConflicts(const SkeletonRecognizer::Character& character,
                             const std::vector<SkeletonRecognizer::Bone>& bones) const;

    // invertibleBone: an IDCCHub::InvertibleBone value.
    bool IsInverted(int invertibleBone) const;
    bool SetInverted(int invertibleBone, bool inverted);

    // The merged result of the last validation run.
    ValidationState GetValidationState() const { return mState; }
    std::string GetValidationMessage() const { return mMessage; }
    // 0 unassigned, 1 assigned and valid, 2 warning, 3 error.
    int GetNodeState(int nodeId) const;
    std::string GetNodeMessage(int nodeId) const;
    void Validate();

    bool IsLocked() const;
    bool IsMirrorMode() const { return mMirrorMode; }
    bool IsBusy() const { return mBusy; }
    int GetEditedPart() const { return mEditedPart; }
    // picked: the user picked the part, so the host selects its bone.
    void SetEditedPart(int nodeId, bool picked);
    // The current characterization's last operation, "No previous operation." before its first.
    QString GetLastOperationText() const;
    QTimer* GetGeometryTimer() const { return mTimer; }

signals:
    void ModelChanged();
    void EditedPartChanged(int oldEditedPartId, int newEditedPartId, bool isReadWrite);

public slots:
    void RenameBone(const QString& newName, const QString& oldName);
    void RemoveBone(const QString& Name);
    void RemoveCharacterizationNode(const QString& name);
    void RenameCharacterization(const QString& newName, const QString& oldName);
    void ClearAll();
    // Maps the host's skeleton automatically (the selected character when several are found), keeping what is
    // already mapped; when no humanoid is found, applies the template that fits the scene best.
    void AutoMatch();
    bool SetCurrentCharacterization(int index);
    void SetEditMode(bool readOnly, std::vector<int> unsyncNodeToClear = std::vector<int>());
    void SetMirrorMode(bool mirror);
    void CreateNewCharacterization();
    void CheckGeometry();
    // The host's rest pose changed: validates with the new geometry and tells the views either way.
    void FollowReferencePose();

private:
    struct BusyScope;

    bool IsEditable() const;
    void RemoveAt(int index);
    // Switches without announcing it and keeps the edited part: for the host's operations that visit every
    // characterization and then come back.
    void MakeCurrent(int index);
    // Keeps `previous` current when it is still listed, else the first; creates one when none is left.
    void RestoreCurrent(const Characterization* previous);
    void SetLockedState(Characterization& characterization, bool locked);
    void SetMark(int nodeId, int32_t mark);
    void Attach(Characterization& characterization, int nodeId, const QString& bone);
    void Detach(Characterization& characterization, int nodeId, bool fromHost);
    // Validates an editable characterization; a locked one only announces the change.
    void Update();
    // notify: announce even when neither the mapping nor the findings changed.
    void RunValidation(bool notify);
    void ResetFindings();
    void Notify();

    IDCCHub* mHub = nullptr;
    ResourceBridge* mBridge = nullptr;
    CharacterizationList mCharacterizations;
    const Characterization* mPlaceholder = nullptr;
    int mCurrent = -1;
    std::array<int32_t, ZELNodeCount> mMarks {};
    std::array<std::string, ZELNodeCount> mNodeMessages;
    ValidationState mState = NotValidated;
    std::string mMessage;
    std::array<uint32_t, ZELNodeCount> mLastAssigned {};
    int mEditedPart = NoPart;
    QTimer* mTimer = nullptr;
    bool mMirrorMode = false;
    MirrorMatcher mMirror;
    bool mBusy = false;
    bool mChanged = false;
    QHash<const Characterization*, QString> mLastOperations;
    std::unique_ptr<ValidationRun> mRules;
};
