// Name matching by templates and mirror pairs: the model's side of the template and mirror commands.
#include <zelkin/CharacterizationModel.h>

#include <algorithm>

#include <zelkin/IDCCHub.h>
#include <zelkin/MappingTemplate.h>
#include <zelkin/ResourceBridge.h>
#include <zelkin/TemplateChooser.h>
#include <zelkin/TemplateLibrary.h>
#include <zelkin/UserConfiguration.h>

void CharacterizationModel::ReloadMirrorPairs()
{
    if (mBridge != nullptr)
        mMirror.Load(mBridge->GetConfiguration().Document());
    else
        mMirror.SetPairs({});
}

NameMatcher::MatchType CharacterizationModel::GetMatchType() const
{
    return mBridge != nullptr ? mBridge->GetConfiguration().MatchType() : NameMatcher::Suffix;
}

QStringList CharacterizationModel::GetNameDelimiters() const
{
    return mBridge != nullptr ? mBridge->GetConfiguration().Delimiters() : UserConfiguration::BuiltInDelimiters();
}

QString CharacterizationModel::CommonBonePrefix(const QStringList& bones) const
{
    if (bones.isEmpty())
        return QString();
    QString common = bones.front();
    for (const QString& bone : bones)
    {
        int length = 0;
        while (length < common.size() && length < bone.size() && common[length] == bone[length])
            ++length;
        common.truncate(length);
    }
    int end = 0;
    for (const QString& delimiter : GetNameDelimiters())
    {
        const int at = delimiter.isEmpty() ? -1 : common.lastIndexOf(delimiter);
        if (at >= 0)
            end = std::max(end, int(at + delimiter.size()));
    }
    return common.left(end);
}

int CharacterizationModel::ApplyTemplate(const MappingTemplate& mappingTemplate, NameMatcher::MatchType type,
                                         const QStringList& offeredBones, const QString& prefix)
{
    if (!IsEditable())
        return -1;
    const std::shared_ptr<Characterization> current = GetCurrentCharacterization();
    NameMatcher::TakenNodes taken {};
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
        taken[nodeId] = current->IsAssigned(nodeId);
    const NameMatcher matcher(mappingTemplate, type, GetNameDelimiters());
    std::vector<Assignment> batch;
    for (const NameMatcher::Assignment& match : matcher.Match(offeredBones, prefix, taken))
    {
        // Applying a template again, or over a hand-made start, must not pull bones away from their nodes.
        if (current->FindNode(match.bone) < 0)
            batch.emplace_back(match.nodeId, match.bone);
    }
    AssignBones(batch);
    return static_cast<int>(batch.size());
}

TemplateLibrary CharacterizationModel::GetTemplateLibrary() const
{
    return mBridge != nullptr ? mBridge->GetTemplates() : TemplateLibrary(UserConfiguration::TemplateDirectory());
}

std::unique_ptr<TemplateChooser> CharacterizationModel::CreateTemplateChooser() const
{
    return std::make_unique<TemplateChooser>(GetTemplateLibrary(), GetMatchType(), GetNameDelimiters());
}

QSet<QString> CharacterizationModel::GetLeafBones(const QStringList& sceneBones) const
{
    if (mHub == nullptr)
        return QSet<QString>(sceneBones.begin(), sceneBones.end());
    QSet<QString> parents;
    for (const QString& bone : sceneBones)
        parents.insert(mHub->GetBoneParent(bone));
    QSet<QString> leaves;
    for (const QString& bone : sceneBones)
    {
        if (!parents.contains(bone))
            leaves.insert(bone);
    }
    return leaves;
}

SkeletonRecognizer::Result CharacterizationModel::RecognizeSkeleton(std::vector<SkeletonRecognizer::Bone>& bones) const
{
    bones.clear();
    if (mHub == nullptr || !mHub->DescribeSkeleton(bones))
        return {};
    return SkeletonRecognizer(GetTemplateLibrary()).Recognize(bones);
}

int CharacterizationModel::SelectedCharacter(const SkeletonRecognizer::Result& result,
                                             const std::vector<SkeletonRecognizer::Bone>& bones, bool orFirst) const
{
    QStringList selection;
    if (mHub != nullptr)
        mHub->GetSelectedBones(selection);
    for (const QString& selected : selection)
    {
        const auto found = std::find_if(bones.begin(), bones.end(), [&](const auto& bone) { return bone.name == selected; });
        // Up from the bone to the first character root; a host's loop of parents ends after one pass over them.
        int at = found != bones.end() ? int(found - bones.begin()) : -1;
        for (size_t steps = 0; at >= 0 && at < int(bones.size()) && steps <= bones.size(); ++steps)
        {
            for (size_t c = 0; c < result.characters.size(); ++c)
                if (result.characters[c].root == at)
                    return int(c);
            at = bones[size_t(at)].parent;
        }
    }
    return result.characters.empty() || !orFirst ? -1 : 0;
}

namespace
{
// The bone the character gives each node, empty where it gives none.
std::vector<QString> RecognizedBones(const SkeletonRecognizer::Character& character,
                                     const std::vector<SkeletonRecognizer::Bone>& bones)
{
    std::vector<QString> wanted(ZELNodeCount);
    for (const SkeletonRecognizer::NodeMatch& match : character.nodes)
        if (match.nodeId >= 0 && match.nodeId < ZELNodeCount && match.bone >= 0 && match.bone < int(bones.size()))
            wanted[size_t(match.nodeId)] = bones[size_t(match.bone)].name;
    return wanted;
}
} // namespace

int CharacterizationModel::RecognitionConflicts(const SkeletonRecognizer::Character& character,
                                                const std::vector<SkeletonRecognizer::Bone>& bones) const
{
    const std::shared_ptr<Characterization> current = GetCurrentCharacterization();
    if (!current)
        return 0;
    const std::vector<QString> wanted = RecognizedBones(character, bones);
    const QSet<QString> recognized(wanted.begin(), wanted.end());
    int conflicts = 0;
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        const QString held = current->GetBone(nodeId);
        const QString& bone = wanted[size_t(nodeId)];
        if (!held.isEmpty() && ((!bone.isEmpty() && bone != held) || (bone.isEmpty() && recognized.contains(held))))
            ++conflicts;
    }
    return conflicts;
}

int CharacterizationModel::ApplyRecognition(const SkeletonRecognizer::Character& character,
                                            const std::vector<SkeletonRecognizer::Bone>& bones, Merge merge)
{
    if (!IsEditable())
        return -1;
    const std::shared_ptr<Characterization> current = GetCurrentCharacterization();
    const std::vector<QString> wanted = RecognizedBones(character, bones);
    const QSet<QString> recognized(wanted.begin(), wanted.end());
    std::vector<Assignment> batch;
    // Clearing comes first in the batch, so that a bone can move to its new node.
    for (int nodeId = 0; merge != Merge::KeepExisting && nodeId < ZELNodeCount; ++nodeId)
    {
        const QString held = current->GetBone(nodeId);
        const bool loses = merge == Merge::ReplaceAll ? held != wanted[size_t(nodeId)]
                                                      : !wanted[size_t(nodeId)].isEmpty() || recognized.contains(held);
        if (!held.isEmpty() && loses && held != wanted[size_t(nodeId)])
            batch.emplace_back(nodeId, QString());
    }
    int mapped = 0;
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        const QString& bone = wanted[size_t(nodeId)];
        if (bone.isEmpty() || current->GetBone(nodeId) == bone)
            continue;
        if (merge == Merge::KeepExisting && (current->IsAssigned(nodeId) || current->FindNode(bone) >= 0))
            continue;
        batch.emplace_back(nodeId, bone);
        ++mapped;
    }
    AssignBones(batch);
    return mapped;
}

void CharacterizationModel::AutoMatch()
{
    if (!IsEditable() || mHub == nullptr)
        return;
    std::vector<SkeletonRecognizer::Bone> bones;
    const SkeletonRecognizer::Result recognized = RecognizeSkeleton(bones);
    const int character = SelectedCharacter(recognized, bones);
    if (character >= 0)
        ApplyRecognition(recognized.characters[size_t(character)], bones, Merge::KeepExisting);
    else
        ApplyBestTemplate();
}

int CharacterizationModel::ApplyBestTemplate()
{
    QStringList sceneBones;
    if (!IsEditable() || mHub == nullptr || !mHub->GetSceneBones(sceneBones) || sceneBones.isEmpty())
        return 0;
    const TemplateChooser::Result best = CreateTemplateChooser()->Choose(sceneBones, GetLeafBones(sceneBones));
    MappingTemplate chosen;
    if (best.IsValid() && GetTemplateLibrary().Load(best.templateName, chosen))
        return ApplyTemplate(chosen, GetMatchType(), sceneBones, QString());
    return 0;
}
