#include <zelkin/MirrorMatcher.h>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/ConfigDocument.h>

namespace
{
const QString MirrorSection = QStringLiteral("mirror_list");
const QString MirrorKey = QStringLiteral("mirror");
const MirrorMatcher::Pair FixedPair(QStringLiteral("Right"), QStringLiteral("Left"));
} // namespace

void MirrorMatcher::Load(const ConfigDocument& document)
{
    mPairs = document.ReadPairs(MirrorSection, MirrorKey);
}

void MirrorMatcher::Save(ConfigDocument& document) const
{
    QList<Pair> complete;
    for (const Pair& pair : mPairs)
        if (!pair.first.isEmpty() && !pair.second.isEmpty())
            complete.append(pair);
    document.WritePairs(MirrorSection, MirrorKey, complete);
}

QString MirrorMatcher::ApplyPair(const QString& name, const Pair& pair)
{
    // An empty keyword is found in every name and would scatter the other one between all its letters.
    if (pair.first.isEmpty() || pair.second.isEmpty())
        return QString();
    if (name.contains(pair.first, Qt::CaseSensitive))
        return QString(name).replace(pair.first, pair.second, Qt::CaseSensitive);
    if (name.contains(pair.second, Qt::CaseSensitive))
        return QString(name).replace(pair.second, pair.first, Qt::CaseSensitive);
    return QString();
}

QString MirrorMatcher::CounterpartBone(const QString& bone, const BoneExists& exists) const
{
    QList<Pair> pairs = mPairs;
    pairs.append(FixedPair);
    for (const Pair& pair : pairs)
    {
        const QString candidate = ApplyPair(bone, pair);
        if (!candidate.isNull() && (!exists || exists(candidate)))
            return candidate;
    }
    return QString();
}

MirrorMatcher::Mirrored MirrorMatcher::MirrorAssignment(int nodeId, const QString& bone, const BoneExists& exists) const
{
    const int opposite = BoneCatalogue::Counterpart(nodeId);
    if (!BoneCatalogue::IsValidNode(nodeId) || opposite == nodeId || opposite < 0)
        return {};
    const QString counterpart =
        CounterpartBone(bone, [&](const QString& candidate) { return candidate != bone && (!exists || exists(candidate)); });
    if (counterpart.isNull())
        return {};
    return {opposite, counterpart};
}
