#pragma once

#include <functional>
#include <vector>

#include <QHash>
#include <QStringList>

#include <zelkin/IDCCHub.h>

// A host scene for tests: bones in parent-first order with their reference geometry, a selection, and a journal of
// every call the tool makes on the host ("Attach:LeftArm", "Skeleton:old|new|character|node|fromHost", ...).
class TestHub : public IDCCHub
{
public:
    // The bone is added after its parent; the geometry carries a translation only.
    void AddBone(const QString& name, const QString& parent, float x, float y, float z);
    void AddBone(const QString& name, const QString& parent, const CharacterJointGeometry& geometry);
    void MoveBone(const QString& name, float x, float y, float z);
    // Both change the scene first and then, unless told not to, tell the tool as a host does.
    void RenameSceneBone(const QString& oldName, const QString& newName, bool notify = true);
    void RemoveSceneBone(const QString& name, bool notify = true);
    int BoneCount() const { return static_cast<int>(mBones.size()); }

    // Replaces the default host validation (state Valid).
    std::function<void(ValidationLog&)> hostValidation;
    QStringList journal;
    QStringList selection;
    mutable int geometryRequests = 0;

    bool GetSelectedBones(QStringList& bones) const override;
    bool SelectBones(const QStringList& bones) override;
    bool GetSceneBones(QStringList& bones) const override;
    bool BoneExists(const QString& bone) const override;
    bool GetBoneReferenceGeometry(const QString& bone, CharacterJointGeometry& geometry) const override;
    bool AttachHostBone(const QString& bone) override;
    bool DetachHostBone(const QString& bone) override;
    QString GetBoneParent(const QString& bone) const override;
    bool CreateDccCharacter(const QString& characterName) override;

    void CharacterizationDCCValidate(ValidationLog& log) override;
    void UpdateDccCharacterSkeleton(const QString& oldBone, const QString& newBone, const QString& characterName,
                                    int nodeId, bool fromHost) override;
    void UpdateDccDeleteCharacter(const QString& characterName) override;
    void UpdateDccCharacterUI() override;
    void RegisterCharacterizationNode(const QString& characterName) override;
    void UnregisterCharacterizationNode(const QString& characterName) override;
    void UpdateDccBoneInvertedState(int invertibleBone, bool inverted) override;

private:
    struct Bone
    {
        QString name;
        QString parent;
        CharacterJointGeometry geometry;
    };

    void Reindex();

    std::vector<Bone> mBones;
    QHash<QString, int> mIndex;
};
