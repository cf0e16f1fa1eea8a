#include "ChurnChecks.h"

#include <algorithm>

#include <QDir>
#include <QHash>
#include <QTimer>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationModel.h>

#include "ProjectFile.h"
#include "Scene.h"
#include "StudioSession.h"

namespace ChurnChecks
{
namespace
{
QString Node(int nodeId)
{
    return QString::fromLatin1(BoneCatalogue::NodeName(nodeId));
}

// "LeftArm: 'a' / 'b'" for the first few nodes that differ.
QString MappingDifference(const QStringList& expected, const QStringList& actual)
{
    QStringList lines;
    for (int nodeId = 0; nodeId < expected.size() && nodeId < actual.size() && lines.size() < 5; ++nodeId)
    {
        if (expected[nodeId] != actual[nodeId])
            lines.append(QStringLiteral("%1: '%2' expected, '%3' found").arg(Node(nodeId), expected[nodeId],
                                                                          actual[nodeId]));
    }
    return lines.join(QStringLiteral("; "));
}

testing::AssertionResult SameEntries(const ProjectFile& expected, const ProjectFile& actual)
{
    if (expected.current != actual.current)
        return testing::AssertionFailure() << "current '" << actual.current.toStdString() << "' instead of '"
                                           << expected.current.toStdString() << "'";
    if (expected.entries.size() != actual.entries.size())
        return testing::AssertionFailure() << actual.entries.size() << " characterizations instead of "
                                           << expected.entries.size();
    for (size_t i = 0; i < expected.entries.size(); ++i)
    {
        const ProjectFile::Entry& want = expected.entries[i];
        const ProjectFile::Entry& got = actual.entries[i];
        if (want.name != got.name || want.locked != got.locked || want.bones != got.bones)
            return testing::AssertionFailure() << "entry " << i << " is '" << got.name.toStdString() << "' (locked "
                                               << got.locked << ") instead of '" << want.name.toStdString()
                                               << "' (locked " << want.locked << "): "
                                               << MappingDifference(want.bones, got.bones).toStdString();
        if (want.stream != got.stream)
            return testing::AssertionFailure() << "the stream of '" << want.name.toStdString() << "' changed ("
                                               << want.stream.size() << " bytes, then " << got.stream.size() << ")";
    }
    return testing::AssertionSuccess();
}
} // namespace

Snapshot Take(const CharacterizationModel& model)
{
    Snapshot snapshot;
    for (const std::shared_ptr<Characterization>& characterization : model.GetCharacterizations())
    {
        Held held {characterization, characterization->GetName(), characterization->IsLocked(),
                   characterization->GetBoneNames(), {}};
        for (int limb = 0; limb < ZELLimbCount; ++limb)
            held.inverted.append(characterization->IsInverted(limb));
        snapshot.push_back(held);
    }
    return snapshot;
}

testing::AssertionResult SameContent(const Snapshot& expected, const Snapshot& actual)
{
    if (expected.size() != actual.size())
        return testing::AssertionFailure() << actual.size() << " characterizations instead of " << expected.size();
    for (size_t i = 0; i < expected.size(); ++i)
    {
        const Held& want = expected[i];
        const Held& got = actual[i];
        if (want.name != got.name || want.locked != got.locked)
            return testing::AssertionFailure() << "characterization " << i << " is '" << got.name.toStdString()
                                               << "' (locked " << got.locked << ") instead of '"
                                               << want.name.toStdString() << "' (locked " << want.locked << ")";
        if (want.bones != got.bones || want.inverted != got.inverted)
            return testing::AssertionFailure() << "the mapping of '" << want.name.toStdString() << "' differs: "
                                               << MappingDifference(want.bones, got.bones).toStdString();
    }
    return testing::AssertionSuccess();
}

testing::AssertionResult NoBoneMissingFromScene(const CharacterizationModel& model, const Scene& scene)
{
    for (const std::shared_ptr<Characterization>& characterization : model.GetCharacterizations())
    {
        for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
        {
            const QString bone = characterization->GetBone(nodeId);
            if (!bone.isEmpty() && scene.IndexOf(bone) < 0)
                return testing::AssertionFailure()
                       << "'" << characterization->GetName().toStdString() << "' maps " << Node(nodeId).toStdString()
                       << " to '" << bone.toStdString() << "', which the scene does not have"
                       << (characterization->IsLocked() ? " (locked)" : "");
        }
    }
    return testing::AssertionSuccess();
}

testing::AssertionResult AttachCountsAgree(const CharacterizationModel& model, const Scene& scene)
{
    QHash<QString, int> holders;
    for (const std::shared_ptr<Characterization>& characterization : model.GetCharacterizations())
    {
        for (const QString& bone : characterization->GetBoneNames())
        {
            if (!bone.isEmpty())
                ++holders[bone];
        }
    }
    for (int index = 0; index < scene.BoneCount(); ++index)
    {
        const SceneBone& bone = scene.Bone(index);
        if (bone.attachCount != holders.value(bone.name))
            return testing::AssertionFailure() << "bone '" << bone.name.toStdString() << "' has attach count "
                                               << bone.attachCount << " but " << holders.value(bone.name)
                                               << " nodes hold it";
    }
    return testing::AssertionSuccess();
}

testing::AssertionResult MarksAgreeWithFreshRun(const CharacterizationModel& model, IDCCHub& hub)
{
    const std::shared_ptr<Characterization> current = model.GetCurrentCharacterization();
    if (!current)
        return testing::AssertionFailure() << "no characterization is current";
    CharacterizationModel fresh(&hub);
    fresh.GetGeometryTimer()->stop();
    // A locked characterization keeps the geometry it was locked with: the fresh run must not read it again.
    if (current->IsLocked())
        fresh.SetEditMode(true);
    fresh.ReplaceCurrentContent(*current);
    if (fresh.GetValidationState() != model.GetValidationState() ||
        fresh.GetValidationMessage() != model.GetValidationMessage())
        return testing::AssertionFailure() << "'" << current->GetName().toStdString() << "' shows state "
                                           << model.GetValidationState() << " '" << model.GetValidationMessage()
                                           << "' where a fresh run finds " << fresh.GetValidationState() << " '"
                                           << fresh.GetValidationMessage() << "'";
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        if (fresh.GetNodeState(nodeId) != model.GetNodeState(nodeId) ||
            fresh.GetNodeMessage(nodeId) != model.GetNodeMessage(nodeId))
            return testing::AssertionFailure()
                   << "'" << current->GetName().toStdString() << "' marks " << Node(nodeId).toStdString() << " "
                   << model.GetNodeState(nodeId) << " '" << model.GetNodeMessage(nodeId) << "' where a fresh run finds "
                   << fresh.GetNodeState(nodeId) << " '" << fresh.GetNodeMessage(nodeId) << "'";
    }
    return testing::AssertionSuccess();
}

testing::AssertionResult LockRespected(const Snapshot& before, const SceneEdits& edits,
                                       const Characterization* unlockedByUser)
{
    for (const Held& held : before)
    {
        const std::shared_ptr<Characterization> live = held.live.lock();
        if (!held.locked || !live)
            continue;
        // The nodes follow their bones through a rename; a deleted bone leaves its nodes.
        QStringList expected = held.bones;
        for (const auto& [oldName, newName] : edits.renames)
            std::replace(expected.begin(), expected.end(), oldName, newName);
        bool lostBone = false;
        for (const QString& bone : edits.deleted)
        {
            lostBone = lostBone || expected.contains(bone);
            std::replace(expected.begin(), expected.end(), bone, QString());
        }
        const QString name = live->GetName();
        if (live->GetBoneNames() != expected)
            return testing::AssertionFailure() << "locked '" << name.toStdString() << "' changed: "
                                               << MappingDifference(expected, live->GetBoneNames()).toStdString();
        if (lostBone && live->IsLocked())
            return testing::AssertionFailure() << "'" << name.toStdString() << "' lost a bone but stays locked";
        if (!lostBone && live.get() != unlockedByUser && !live->IsLocked())
            return testing::AssertionFailure() << "'" << name.toStdString() << "' was unlocked behind the user's back";
        for (int limb = 0; limb < ZELLimbCount; ++limb)
        {
            if (live->IsInverted(limb) != held.inverted.value(limb))
                return testing::AssertionFailure() << "locked '" << name.toStdString() << "' changed limb " << limb;
        }
    }
    return testing::AssertionSuccess();
}

testing::AssertionResult SurvivesSaveAndLoad(StudioSession& live, StudioSession& reader, const QString& folder)
{
    const QDir dir(folder);
    const QString first = dir.filePath(QStringLiteral("live.zelproj"));
    const QString second = dir.filePath(QStringLiteral("reader.zelproj"));
    const Snapshot before = Take(*live.GetModel());
    QString error;
    if (!live.SaveProject(first, error))
        return testing::AssertionFailure() << "saving failed: " << error.toStdString();
    if (testing::AssertionResult same = SameContent(before, Take(*live.GetModel())); !same)
        return testing::AssertionFailure() << "saving changed the session: " << same.message();
    if (!reader.OpenProject(first, nullptr, error) || !reader.SaveProject(second, error))
        return testing::AssertionFailure() << "reading the saved project back failed: " << error.toStdString();
    if (testing::AssertionResult same = SameContent(before, Take(*reader.GetModel())); !same)
        return testing::AssertionFailure() << "read back: " << same.message();
    if (reader.GetScene().BoneNames() != live.GetScene().BoneNames())
        return testing::AssertionFailure() << "read back with other bones";
    if (reader.GetModel()->GetCurrentIndex() != live.GetModel()->GetCurrentIndex())
        return testing::AssertionFailure() << "read back with another characterization current";
    ProjectFile saved;
    ProjectFile resaved;
    if (!saved.Read(first, error) || !resaved.Read(second, error))
        return testing::AssertionFailure() << error.toStdString();
    if (testing::AssertionResult same = SameEntries(saved, resaved); !same)
        return testing::AssertionFailure() << "saved again after reading: " << same.message();
    return testing::AssertionSuccess();
}
} // namespace ChurnChecks
