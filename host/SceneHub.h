#pragma once

#include <utility>
#include <vector>

#include <QMatrix4x4>
#include <QString>
#include <QStringList>

#include <zelkin/IDCCHub.h>

#include "Scene.h"

// The hub of our own programs: the tool's host operations over a Scene, and the user's scene edits turned into the
// hub's signals. The scene is not owned: it belongs to the program and must outlive the hub.
//
// A bone's attach count is the number of characterization nodes holding it (any characterization); the host-side
// validation looks at every bone with a count.
class SceneHub : public IDCCHub
{
    Q_OBJECT

public:
    // Relative spread of a mapped bone's global scale axes above which the host warns.
    static constexpr float ScaleTolerance = 1e-4f;

    explicit SceneHub(Scene& scene);

    Scene& GetScene() { return mScene; }
    const Scene& GetScene() const { return mScene; }
    // 0 for a bone the scene does not have.
    int GetAttachCount(const QString& bone) const;

    // User edits: each changes the scene first, then emits the hub's signal. The new bone name is sanitized first;
    // a name that ends up empty or taken is refused.
    bool RenameBone(const QString& oldName, const QString& newName);
    // The same with the name taken as it is (undo puts back a name the file gave, which sanitizing could change).
    // The tool renames the bone in its current characterization while that one is editable; the hub carries the
    // rename into the others and into a locked one, whose nodes still hold the same joint.
    bool ApplyRename(const QString& oldName, const QString& newName);
    bool DeleteBone(const QString& name);
    // Character objects; named so as not to hide IDCCHub::DeleteCharacter, which deletes through the tool.
    bool RenameCharacterObject(const QString& oldName, const QString& newName);
    bool DeleteCharacterObject(const QString& name);
    // Rest-pose edits: new local transforms for bones (by index), every bone below following; then transforms put
    // back exactly as they were saved (undo). Each emits ReferencePoseChanged().
    void SetLocalTransforms(const std::vector<std::pair<int, QMatrix4x4>>& locals);
    void RestoreTransforms(const std::vector<Scene::SavedTransforms>& saved);

    bool GetSelectedBones(QStringList& bones) const override;
    // Refused, leaving the selection alone, when a name is not a bone; emits selectionChanged() on a change.
    bool SelectBones(const QStringList& bones) override;
    bool GetSceneBones(QStringList& bones) const override;
    bool BoneExists(const QString& bone) const override;
    // The global reference transform, the pre-rotation and the rotation order; no post-rotation, no limits.
    bool GetBoneReferenceGeometry(const QString& bone, CharacterJointGeometry& geometry) const override;
    bool AttachHostBone(const QString& bone) override;
    // False when the bone is unknown or not attached.
    bool DetachHostBone(const QString& bone) override;
    QString GetBoneParent(const QString& bone) const override;
    // True when the scene has the character object afterwards.
    bool CreateDccCharacter(const QString& characterName) override;

    // A warning naming each mapped bone whose global scale is not uniform; else valid.
    void CharacterizationDCCValidate(ValidationLog& log) override;
    void UpdateDccCharacterSkeleton(const QString& oldBone, const QString& newBone, const QString& characterName,
                                    int nodeId, bool fromHost) override;
    // The tool's characterizations have character objects; one the tool drops goes without a signal back.
    void RegisterCharacterizationNode(const QString& characterName) override;
    void UnregisterCharacterizationNode(const QString& characterName) override;
    // Keeps letters, digits, '_', ':', '.' and '-' (namespaces and numbered copies stay readable); drops every
    // other character, spaces included.
    QString SanitizeBoneName(const QString& bone) const override;
    // With which bones skin a mesh and where end sites say bones end.
    bool DescribeSkeleton(std::vector<SkeletonRecognizer::Bone>& bones) const override;

signals:
    // The bone's attach count changed; a view colouring mapped joints repaints it.
    void BoneMarkChanged(const QString& bone);

private:
    Scene& mScene;
};
