#pragma once

#include <utility>
#include <vector>

#include <QHash>
#include <QString>
#include <QStringList>

#include "SceneBone.h"

// A host scene: the skeleton's bones in parent-first order, the selection, the character objects and the file it
// came from. Bone names are unique; every edit keeps the bones parent-first.
class Scene
{
public:
    int BoneCount() const { return static_cast<int>(mBones.size()); }
    bool IsEmpty() const { return mBones.empty(); }
    // The index is not range-checked.
    const SceneBone& Bone(int index) const { return mBones[static_cast<size_t>(index)]; }
    SceneBone& Bone(int index) { return mBones[static_cast<size_t>(index)]; }
    // -1 when the scene has no bone of that name.
    int IndexOf(const QString& name) const;
    const SceneBone* Find(const QString& name) const;
    SceneBone* Find(const QString& name);
    QStringList BoneNames() const;
    std::vector<int> Children(int index) const;

    // Appends the bone with its global transform taken from its parent and local transform. Refused (-1) when the
    // name is empty or taken, or the parent does not come before it.
    int AddBone(const SceneBone& bone);
    // The bone keeps its place and everything else; refused when the new name is empty or taken.
    bool RenameBone(const QString& oldName, const QString& newName);
    // Children move to the deleted bone's parent and keep their global transforms.
    bool DeleteBone(const QString& name);

    // The bones' transforms as they are, to be put back exactly.
    struct SavedTransforms
    {
        int index = -1;
        QMatrix4x4 local;
        QMatrix4x4 global;
    };
    // These bones and every bone below them, in scene order; indices out of range are left out.
    std::vector<int> Subtrees(const std::vector<int>& bones) const;
    // A rest-pose edit: new local transforms for some bones; the global transforms of those bones and of every
    // bone below them follow, the others stay as they are. Out-of-range indices are ignored.
    void SetLocalTransforms(const std::vector<std::pair<int, QMatrix4x4>>& locals);
    std::vector<SavedTransforms> SaveTransforms(const std::vector<int>& bones) const;
    void RestoreTransforms(const std::vector<SavedTransforms>& saved);

    // Bone names in selection order.
    const QStringList& Selection() const { return mSelection; }
    // Refused, leaving the selection alone, when a name is not a bone; repeated names count once.
    bool SetSelection(const QStringList& bones);

    const QStringList& Characters() const { return mCharacters; }
    bool HasCharacter(const QString& name) const { return mCharacters.contains(name); }
    // Refused when the name is empty or taken.
    bool AddCharacter(const QString& name);
    bool RenameCharacter(const QString& oldName, const QString& newName);
    bool DeleteCharacter(const QString& name);

    const QString& SourcePath() const { return mSourcePath; }
    void SetSourcePath(const QString& path) { mSourcePath = path; }

    void Clear();

private:
    void Reindex();

    std::vector<SceneBone> mBones;
    QHash<QString, int> mIndex;
    QStringList mSelection;
    QStringList mCharacters;
    QString mSourcePath;
};
