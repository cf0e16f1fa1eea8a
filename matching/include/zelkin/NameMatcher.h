#pragma once

#include <array>
#include <memory>
#include <vector>

#include <QString>
#include <QStringList>
#include <QStringView>

#include <zelkin/CharacterizationExport.h>
#include <zelkin/ZELSolver.h>

class MappingTemplate;
class PatternAutomaton;

// Matches host bone names against a mapping template. Case never matters.
//
// Suffix: entries are visited in node order; a root entry takes the bone whose name equals the root name (even
// when its node is taken); otherwise the first entry whose pattern ends the name decides, and the bone stays
// unmatched when that node is taken. Contains: the longest pattern found anywhere in the name wins (lower node on
// a tie), and the bone stays unmatched when that node is taken.
//
// Names are compared without the scope's prefix and one delimiter right after it ("Char01" + "_" + "LeftArm").
// Bones are offered in scene order, parents first; the first offered bone is the root.
class ZELKIN_CHARACTERIZATION_EXPORT NameMatcher
{
public:
    enum MatchType
    {
        Contains = 0,
        Suffix = 1
    };

    struct Assignment
    {
        int nodeId;
        QString bone;
        bool operator==(const Assignment& other) const { return nodeId == other.nodeId && bone == other.bone; }
    };

    using TakenNodes = std::array<bool, ZELNodeCount>;

    NameMatcher(const MappingTemplate& mappingTemplate, MatchType type, const QStringList& delimiters);
    ~NameMatcher();
    NameMatcher(const NameMatcher&) = delete;
    NameMatcher& operator=(const NameMatcher&) = delete;

    MatchType Type() const { return mType; }

    // The matched node for one comparison name, or -1.
    int MatchOne(QStringView name, QStringView rootName, const TakenNodes& taken) const;
    // The same by the plain rule, entry by entry; the automaton's reference.
    int MatchOneDirect(QStringView name, QStringView rootName, const TakenNodes& taken) const;

    // Matches the offered bones in order, taking each matched node for the bones after it.
    std::vector<Assignment> Match(const QStringList& offeredBones, const QString& prefix, TakenNodes taken) const;

    // The name without a leading prefix (any case) and the longest delimiter that follows it; the name
    // unchanged when it does not start with the prefix.
    static QStringView StripPrefix(QStringView name, QStringView prefix, const QStringList& delimiters);

    // Scopes. Both keep the scene order.
    static QStringList BonesWithPrefix(const QStringList& sceneBones, const QString& prefix);
    static QStringList SelectedBones(const QStringList& sceneBones, const QStringList& selection);

private:
    MatchType mType;
    QStringList mDelimiters;
    std::array<QString, ZELNodeCount> mFoldedPatterns;
    std::array<bool, ZELNodeCount> mUseRoot {};
    int mFirstRootEntry = -1;
    std::unique_ptr<PatternAutomaton> mAutomaton; // null for templates too large to tabulate
};
