#pragma once

#include <vector>

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <zelkin/CharacterJointGeometry.h>
#include <zelkin/CharacterizationExport.h>
#include <zelkin/SkeletonRecognizer.h>
#include <zelkin/ValidationLog.h>
#include <zelkin/ZELSolver.h>

class CharacterTool;
class CharacterizationModel;

// The host application's side of the tool. A host derives from it, implements the scene operations and emits the
// scene signals; the tool calls the virtual operations, the host calls the non-virtual ones. The order of the
// virtual operations is part of the binary interface hosts are built against: append, never reorder.
class ZELKIN_CHARACTERIZATION_EXPORT IDCCHub : public QObject
{
    Q_OBJECT

public:
    // Where the current characterization stands for the host.
    enum CharacterizationState
    {
        CharacterizationInvalid = 0,  // validation failed (or nothing to validate): it cannot be locked
        CharacterizationUnlocked = 1, // valid or with warnings, still editable
        CharacterizationLocked = 2
    };

    enum RollBoneValidation
    {
        RollBoneRefused = 0,
        RollBoneAccepted = 1
    };

    // The middle joints whose bending direction can be flipped; each value is also the solver's limb index. A host
    // may pass any int, which the fixed type keeps a valid value for the range check to refuse.
    enum InvertibleBone : int
    {
        LeftKnee = 0,
        RightKnee = 1,
        LeftElbow = 2,
        RightElbow = 3
    };

    IDCCHub();
    ~IDCCHub() override;

    // The host's current selection, in selection order.
    virtual bool GetSelectedBones(QStringList& bones) const = 0;
    // Replaces the host's selection; an empty list clears it.
    virtual bool SelectBones(const QStringList& bones) = 0;
    // Every bone of the scene, parents before children.
    virtual bool GetSceneBones(QStringList& bones) const = 0;
    virtual bool BoneExists(const QString& bone) const = 0;
    // The bone's global reference-pose transform and its joint data.
    virtual bool GetBoneReferenceGeometry(const QString& bone, CharacterJointGeometry& geometry) const = 0;
    // A bone was assigned to a node.
    virtual bool AttachHostBone(const QString& bone) = 0;
    // A node lost this bone.
    virtual bool DetachHostBone(const QString& bone) = 0;
    // Empty for a root.
    virtual QString GetBoneParent(const QString& bone) const = 0;
    virtual bool CreateDccCharacter(const QString& characterName) = 0;

    virtual void CharacterizationDCCValidate(ValidationLog& log);
    virtual RollBoneValidation CheckSelectedNodeForRollBone(int nodeId);
    // newBone is empty when the node was cleared.
    virtual void UpdateDccCharacterSkeleton(const QString& oldBone, const QString& newBone,
                                            const QString& characterName, int nodeId, bool fromHost);
    virtual void UpdateDccDeleteCharacter(const QString& characterName);
    virtual void UpdateDccCharacterUI();
    virtual void RegisterCharacterizationNode(const QString& characterName);
    virtual void UnregisterCharacterizationNode(const QString& characterName);
    virtual void UpdateDccBoneInvertedState(int invertibleBone, bool inverted);
    virtual bool PostCharacterUpdate(const QString& characterName);
    virtual QString SanitizeBoneName(const QString& bone) const;
    virtual void SetCharacterState(ZELCharacter* character, ZELCharacterState* state);
    // The skeleton as automatic characterization reads it, parents first. By default it is made of the scene's
    // bones, their parents and reference positions; a host that knows which bones skin a mesh, or where a bone
    // ends, adds it here.
    virtual bool DescribeSkeleton(std::vector<SkeletonRecognizer::Bone>& bones) const;

    void setCharacterTool(CharacterTool* tool);
    CharacterTool* GetCharacterTool() const { return mTool; }

    // refresh: bring the characterization's geometry and findings up to date first.
    bool AssignCharacterBone(const QString& characterName, int nodeId, const QString& bone, bool refresh);
    bool GetNodeAssignedToCharacterBone(const QString& characterName, int nodeId, QString& bone) const;
    bool GetBoneInvertedState(const QString& characterName, InvertibleBone bone, bool& inverted) const;
    bool SetBoneInvertedState(const QString& characterName, InvertibleBone bone, bool inverted);

    void Lock(bool lock);
    bool IsLocked() const;
    void MirrorMatching();
    bool IsMirrorToggle() const;
    // Menu entries of the host: each opens the panel's dialog for it.
    void ShowMapBones();
    void ShowConfigureMirrorMatching();
    void ShowSaveCharacterization();
    void ShowExtractMappingTemplate();

    bool GetCharacterList(QList<QString>& names) const;
    void UpdateCharacterList(const QList<QString>& names);
    bool SetCurrentCharacter(const QString& characterName);
    bool IsCharacterCreated(const QString& characterName) const;
    // confirm: let the panel ask the user first (when its confirmation is on).
    bool DeleteCharacter(const QString& characterName, bool confirm);
    bool DeleteAllCharacters(bool confirm);
    void DeleteCurrentCharacter();
    QString GetCurrentCharacterNodeName() const;
    QString GetDefaultCharacterNodeName() const;
    CharacterizationState CurrentCharacterizationState(bool refresh);

signals:
    void selectionChanged();
    void NodeRemoved(const QString& pNode);
    void NameChanged(const QString& pNewName, const QString& pOldName);
    void CharacterizationNodeRemoved(const QString& characterName);
    void CharacterizationNameChanged(const QString& newName, const QString& oldName);
    // The host changed the reference (rest) pose of some bones; a characterization that is not locked takes their
    // new geometry.
    void ReferencePoseChanged();

private:
    CharacterizationModel* Model() const;

    CharacterTool* mTool = nullptr;
};
