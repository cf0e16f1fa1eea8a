#include <zelkin/NameMatcher.h>

#include <QSet>

#include <zelkin/MappingTemplate.h>

#include "PatternAutomaton.h"

namespace
{
bool EqualsFolded(QStringView name, QStringView rootName)
{
    return !rootName.isEmpty() && name.compare(rootName, Qt::CaseInsensitive) == 0;
}
} // namespace

NameMatcher::NameMatcher(const MappingTemplate& mappingTemplate, MatchType type, const QStringList& delimiters)
    : mType(type == Contains ? Contains : Suffix), mDelimiters(delimiters)
{
    std::array<QString, ZELNodeCount> automatonPatterns;
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        const MappingTemplate::Entry& entry = mappingTemplate.GetEntry(nodeId);
        mFoldedPatterns[nodeId] = FoldCase(entry.pattern);
        mUseRoot[nodeId] = entry.useRoot;
        if (entry.useRoot && mFirstRootEntry < 0)
            mFirstRootEntry = nodeId;
        // In Suffix mode a root entry is decided by the root name alone, never by its pattern.
        if (mType == Contains || !entry.useRoot)
            automatonPatterns[nodeId] = mFoldedPatterns[nodeId];
    }
    mAutomaton = PatternAutomaton::Build(
        mType == Suffix ? PatternAutomaton::SuffixKind : PatternAutomaton::ContainsKind, automatonPatterns);
}

NameMatcher::~NameMatcher() = default;

int NameMatcher::MatchOne(QStringView name, QStringView rootName, const TakenNodes& taken) const
{
    if (!mAutomaton)
        return MatchOneDirect(name, rootName, taken);
    FoldedName folded;
    FoldCase(name, folded);
    const int found = mAutomaton->Find(folded);
    if (mType == Suffix && mFirstRootEntry >= 0 && (found < 0 || mFirstRootEntry < found)
        && EqualsFolded(name, rootName))
        return mFirstRootEntry;
    return found >= 0 && !taken[found] ? found : -1;
}

int NameMatcher::MatchOneDirect(QStringView name, QStringView rootName, const TakenNodes& taken) const
{
    const QString folded = FoldCase(name);
    if (mType == Suffix)
    {
        const bool isRoot = EqualsFolded(name, rootName);
        for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
        {
            if (mUseRoot[nodeId])
            {
                if (isRoot)
                    return nodeId;
            }
            else if (!mFoldedPatterns[nodeId].isEmpty() && folded.endsWith(mFoldedPatterns[nodeId]))
                return taken[nodeId] ? -1 : nodeId;
        }
        return -1;
    }
    int best = -1;
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        const QString& pattern = mFoldedPatterns[nodeId];
        if (!pattern.isEmpty() && (best < 0 || pattern.size() > mFoldedPatterns[best].size())
            && folded.contains(pattern))
            best = nodeId;
    }
    return best >= 0 && !taken[best] ? best : -1;
}

std::vector<NameMatcher::Assignment> NameMatcher::Match(const QStringList& offeredBones, const QString& prefix,
                                                        TakenNodes taken) const
{
    std::vector<Assignment> assignments;
    if (offeredBones.isEmpty())
        return assignments;
    const QStringView rootName = StripPrefix(offeredBones.first(), prefix, mDelimiters);
    for (const QString& bone : offeredBones)
    {
        const int nodeId = MatchOne(StripPrefix(bone, prefix, mDelimiters), rootName, taken);
        if (nodeId < 0)
            continue;
        taken[nodeId] = true;
        assignments.push_back({nodeId, bone});
    }
    return assignments;
}

QStringView NameMatcher::StripPrefix(QStringView name, QStringView prefix, const QStringList& delimiters)
{
    if (prefix.isEmpty() || !name.startsWith(prefix, Qt::CaseInsensitive))
        return name;
    QStringView rest = name.mid(prefix.size());
    qsizetype longest = 0;
    for (const QString& delimiter : delimiters)
        if (delimiter.size() > longest && rest.startsWith(delimiter))
            longest = delimiter.size();
    return rest.mid(longest);
}

QStringList NameMatcher::BonesWithPrefix(const QStringList& sceneBones, const QString& prefix)
{
    QStringList offered;
    for (const QString& bone : sceneBones)
        if (bone.startsWith(prefix, Qt::CaseInsensitive))
            offered.append(bone);
    return offered;
}

QStringList NameMatcher::SelectedBones(const QStringList& sceneBones, const QStringList& selection)
{
    const QSet<QString> selected(selection.begin(), selection.end());
    QStringList offered;
    for (const QString& bone : sceneBones)
        if (selected.contains(bone))
            offered.append(bone);
    return offered;
}
