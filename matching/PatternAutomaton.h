#pragma once

#include <array>
#include <memory>
#include <vector>

#include <QHash>
#include <QString>
#include <QStringView>
#include <QVarLengthArray>

#include <zelkin/ZELSolver.h>

using FoldedName = QVarLengthArray<char16_t, 128>;

// Simple case folding by code point, so that patterns and names compare the same way on every path.
void FoldCase(QStringView text, FoldedName& folded);
QString FoldCase(QStringView text);

// All patterns of a template at once: one table step per character of a bone name instead of one comparison
// per entry. Suffix walks a trie of reversed patterns from the name's end and keeps the lowest node seen;
// Contains runs an Aho-Corasick automaton and keeps the longest pattern (lowest node on a tie).
class PatternAutomaton
{
public:
    enum Kind
    {
        SuffixKind,
        ContainsKind
    };

    // Empty patterns take no part. Null when the table would be unreasonably large (hostile templates);
    // callers then compare entry by entry.
    static std::unique_ptr<PatternAutomaton> Build(Kind kind, const std::array<QString, ZELNodeCount>& folded);

    // The deciding node for a folded name, or -1.
    int Find(const FoldedName& name) const;

private:
    static constexpr size_t MaxTableSize = size_t(1) << 22;

    explicit PatternAutomaton(Kind kind) : mKind(kind) {}
    void BuildAlphabet(const std::array<QString, ZELNodeCount>& folded);
    int Symbol(char16_t c) const;
    int AddState();
    void AddPattern(const QString& pattern, int nodeId);
    void LinkFailures();
    bool Better(int candidate, int current) const;
    int FindSuffix(const FoldedName& name) const;
    int FindContained(const FoldedName& name) const;

    Kind mKind;
    std::array<int, 128> mAsciiSymbols {};
    QHash<char16_t, int> mOtherSymbols;
    int mAlphabet = 0;
    std::vector<int> mNext; // state * mAlphabet + symbol -> state, -1 for none
    std::vector<int> mNode; // per state: the deciding node, -1 for none
    std::array<int, ZELNodeCount> mLength {};
};
