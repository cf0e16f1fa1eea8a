#pragma once

#include <array>
#include <cstdint>

#include <QString>
#include <QStringList>

#include <zelkin/CharacterJointGeometry.h>
#include <zelkin/CharacterizationExport.h>
#include <zelkin/ZELSolver.h>

// One characterization: a name, the bone mapped to each of the 212 nodes, each node's flag word and
// reference geometry, the four inverted-joint (limb) flags and the lock.
class ZELKIN_CHARACTERIZATION_EXPORT Characterization
{
public:
    static QString DefaultName(); // "New Characterization"

    explicit Characterization(const QString& name = DefaultName());

    const QString& GetName() const { return mName; }
    void SetName(const QString& name) { mName = name; }

    // Empty when the node has no bone (or the identifier is out of range).
    QString GetBone(int nodeId) const;
    // Sets bit 0 of the node's flag word; an empty name clears the node, its flag word and its geometry.
    void SetBone(int nodeId, const QString& bone);
    bool IsAssigned(int nodeId) const;
    int AssignedCount() const;
    // First node holding this bone, or -1.
    int FindNode(const QString& bone) const;
    // All 212 bone names in node order, empty where unmapped.
    QStringList GetBoneNames() const;

    uint32_t GetNodeFlags(int nodeId) const;
    void SetNodeFlags(int nodeId, uint32_t flags);

    const CharacterJointGeometry& GetJointGeometry(int nodeId) const;
    // ORs 7 into the node's flag word when the geometry enables a rotation limit.
    void SetJointGeometry(int nodeId, const CharacterJointGeometry& geometry);
    const CharacterJointGeometry* GetJointGeometries() const { return mGeometry.data(); }

    bool IsInverted(int limb) const;
    void SetInverted(int limb, bool inverted);
    void GetLimbFlags(int32_t flags[4]) const;

    bool IsLocked() const { return mLocked; }
    void SetLocked(bool locked) { mLocked = locked; }

    // Bit 0 alone for each mapped node, or the stored flag words when storedFlags is true.
    ZELCharacterDefinition BuildDefinition(bool storedFlags) const;

    bool operator==(const Characterization& other) const;
    bool operator!=(const Characterization& other) const { return !(*this == other); }

private:
    QString mName;
    std::array<QString, ZELNodeCount> mBones;
    std::array<uint32_t, ZELNodeCount> mFlags {};
    std::array<CharacterJointGeometry, ZELNodeCount> mGeometry;
    std::array<bool, ZELLimbCount> mInverted {};
    bool mLocked = false;
};
