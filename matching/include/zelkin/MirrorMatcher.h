#pragma once

#include <functional>

#include <QList>
#include <QPair>
#include <QString>

#include <zelkin/CharacterizationExport.h>

class ConfigDocument;

// Finds the bone on the other side of the skeleton through keyword pairs (A, B): a name that contains A
// (case-sensitive) has A replaced by B everywhere; otherwise a name that contains B has B replaced by A.
// The configured pairs are tried in order, then the fixed pair ("Right", "Left").
class ZELKIN_CHARACTERIZATION_EXPORT MirrorMatcher
{
public:
    using Pair = QPair<QString, QString>;
    using BoneExists = std::function<bool(const QString&)>;

    struct Mirrored
    {
        int nodeId = -1;
        QString bone;
        bool IsValid() const { return nodeId >= 0; }
    };

    MirrorMatcher() = default;
    explicit MirrorMatcher(const QList<Pair>& pairs) : mPairs(pairs) {}

    const QList<Pair>& Pairs() const { return mPairs; }
    void SetPairs(const QList<Pair>& pairs) { mPairs = pairs; }
    // Replaces the pairs with "mirror_list"/"mirror" in file order.
    void Load(const ConfigDocument& document);
    // Pairs with an empty side are not written.
    void Save(ConfigDocument& document) const;

    // The pair's counterpart of the name, or a null string when the pair does not apply (or has an empty side).
    static QString ApplyPair(const QString& name, const Pair& pair);
    // The first counterpart that exists (every candidate counts when no test is given); null when none.
    QString CounterpartBone(const QString& bone, const BoneExists& exists = BoneExists()) const;
    // What mirror mode assigns along with (node, bone): the counterpart bone on the opposite-side node, when that
    // bone exists in the scene, differs from the bone, and the opposite node differs from the node.
    Mirrored MirrorAssignment(int nodeId, const QString& bone, const BoneExists& exists) const;

private:
    QList<Pair> mPairs;
};
