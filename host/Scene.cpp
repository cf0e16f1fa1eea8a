#include "Scene.h"

int Scene::IndexOf(const QString& name) const
{
    return mIndex.value(name, -1);
}

const SceneBone* Scene::Find(const QString& name) const
{
    const int index = IndexOf(name);
    return index < 0 ? nullptr : &mBones[static_cast<size_t>(index)];
}

SceneBone* Scene::Find(const QString& name)
{
    const int index = IndexOf(name);
    return index < 0 ? nullptr : &mBones[static_cast<size_t>(index)];
}

QStringList Scene::BoneNames() const
{
    QStringList names;
    names.reserve(BoneCount());
    for (const SceneBone& bone : mBones)
        names.append(bone.name);
    return names;
}

std::vector<int> Scene::Children(int index) const
{
    std::vector<int> children;
    // Parent-first order: children can only follow their parent.
    for (int i = index + 1; i < BoneCount(); ++i)
    {
        if (mBones[static_cast<size_t>(i)].parent == index)
            children.push_back(i);
    }
    return children;
}

int Scene::AddBone(const SceneBone& bone)
{
    if (bone.name.isEmpty() || mIndex.contains(bone.name) || bone.parent < -1 || bone.parent >= BoneCount())
        return -1;
    SceneBone added = bone;
    added.global = bone.parent < 0 ? bone.local : Bone(bone.parent).global * bone.local;
    const int index = BoneCount();
    mBones.push_back(added);
    mIndex.insert(added.name, index);
    return index;
}

bool Scene::RenameBone(const QString& oldName, const QString& newName)
{
    const int index = IndexOf(oldName);
    if (index < 0 || newName.isEmpty() || mIndex.contains(newName))
        return false;
    Bone(index).name = newName;
    mIndex.remove(oldName);
    mIndex.insert(newName, index);
    const int selected = mSelection.indexOf(oldName);
    if (selected >= 0)
        mSelection[selected] = newName;
    return true;
}

bool Scene::DeleteBone(const QString& name)
{
    const int index = IndexOf(name);
    if (index < 0)
        return false;
    const int parent = Bone(index).parent;
    const QMatrix4x4 parentInverse = parent < 0 ? QMatrix4x4() : Bone(parent).InverseGlobal();
    for (int child : Children(index))
    {
        SceneBone& bone = Bone(child);
        bone.parent = parent;
        bone.local = parentInverse * bone.global;
    }
    mBones.erase(mBones.begin() + index);
    for (SceneBone& bone : mBones)
    {
        if (bone.parent > index)
            --bone.parent;
    }
    mSelection.removeAll(name);
    Reindex();
    return true;
}

std::vector<int> Scene::Subtrees(const std::vector<int>& bones) const
{
    std::vector<bool> inside(mBones.size(), false);
    for (int bone : bones)
    {
        if (bone >= 0 && bone < BoneCount())
            inside[size_t(bone)] = true;
    }
    std::vector<int> subtrees;
    // Parent-first order: a bone's parent has been decided before the bone.
    for (int i = 0; i < BoneCount(); ++i)
    {
        const int parent = Bone(i).parent;
        if (parent >= 0 && inside[size_t(parent)])
            inside[size_t(i)] = true;
        if (inside[size_t(i)])
            subtrees.push_back(i);
    }
    return subtrees;
}

void Scene::SetLocalTransforms(const std::vector<std::pair<int, QMatrix4x4>>& locals)
{
    std::vector<int> changed;
    for (const auto& [index, local] : locals)
    {
        if (index < 0 || index >= BoneCount())
            continue;
        Bone(index).local = local;
        changed.push_back(index);
    }
    for (int index : Subtrees(changed))
    {
        SceneBone& bone = Bone(index);
        bone.global = bone.parent < 0 ? bone.local : Bone(bone.parent).global * bone.local;
    }
}

std::vector<Scene::SavedTransforms> Scene::SaveTransforms(const std::vector<int>& bones) const
{
    std::vector<SavedTransforms> saved;
    for (int index : bones)
    {
        if (index >= 0 && index < BoneCount())
            saved.push_back({index, Bone(index).local, Bone(index).global});
    }
    return saved;
}

void Scene::RestoreTransforms(const std::vector<SavedTransforms>& saved)
{
    for (const SavedTransforms& bone : saved)
    {
        if (bone.index < 0 || bone.index >= BoneCount())
            continue;
        Bone(bone.index).local = bone.local;
        Bone(bone.index).global = bone.global;
    }
}

bool Scene::SetSelection(const QStringList& bones)
{
    QStringList selection;
    for (const QString& bone : bones)
    {
        if (!mIndex.contains(bone))
            return false;
        if (!selection.contains(bone))
            selection.append(bone);
    }
    mSelection = selection;
    return true;
}

bool Scene::AddCharacter(const QString& name)
{
    if (name.isEmpty() || mCharacters.contains(name))
        return false;
    mCharacters.append(name);
    return true;
}

bool Scene::RenameCharacter(const QString& oldName, const QString& newName)
{
    const int index = mCharacters.indexOf(oldName);
    if (index < 0 || newName.isEmpty() || mCharacters.contains(newName))
        return false;
    mCharacters[index] = newName;
    return true;
}

bool Scene::DeleteCharacter(const QString& name)
{
    return mCharacters.removeAll(name) > 0;
}

void Scene::Clear()
{
    *this = Scene();
}

void Scene::Reindex()
{
    mIndex.clear();
    for (int i = 0; i < BoneCount(); ++i)
        mIndex.insert(Bone(i).name, i);
}
