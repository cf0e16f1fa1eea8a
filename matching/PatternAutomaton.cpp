#include "PatternAutomaton.h"

#include <deque>

void FoldCase(QStringView text, FoldedName& folded)
{
    folded.resize(text.size());
    const QChar* in = text.data();
    char16_t* out = folded.data();
    const qsizetype size = text.size();
    for (qsizetype i = 0; i < size; ++i)
    {
        const char16_t c = in[i].unicode();
        if (c < 0x80)
            out[i] = (c >= u'A' && c <= u'Z') ? char16_t(c + 32) : c;
        else if (in[i].isHighSurrogate() && i + 1 < size && in[i + 1].isLowSurrogate())
        {
            const char32_t folded32 = QChar::toCaseFolded(QChar::surrogateToUcs4(in[i], in[i + 1]));
            out[i] = QChar::highSurrogate(folded32);
            out[i + 1] = QChar::lowSurrogate(folded32);
            ++i;
        }
        else
            out[i] = QChar::toCaseFolded(c);
    }
}

QString FoldCase(QStringView text)
{
    FoldedName folded;
    FoldCase(text, folded);
    return QString(reinterpret_cast<const QChar*>(folded.data()), folded.size());
}

std::unique_ptr<PatternAutomaton> PatternAutomaton::Build(Kind kind, const std::array<QString, ZELNodeCount>& folded)
{
    std::unique_ptr<PatternAutomaton> automaton(new PatternAutomaton(kind));
    automaton->BuildAlphabet(folded);
    size_t states = 1;
    for (const QString& pattern : folded)
        states += size_t(pattern.size());
    if (states * size_t(std::max(automaton->mAlphabet, 1)) > MaxTableSize)
        return nullptr;
    // Growing the table state by state would copy it over and over; its bound is known.
    automaton->mNext.reserve(states * size_t(std::max(automaton->mAlphabet, 1)));
    automaton->mNode.reserve(states);
    automaton->AddState();
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
        if (!folded[nodeId].isEmpty())
            automaton->AddPattern(folded[nodeId], nodeId);
    if (kind == ContainsKind)
        automaton->LinkFailures();
    return automaton;
}

void PatternAutomaton::BuildAlphabet(const std::array<QString, ZELNodeCount>& folded)
{
    mAsciiSymbols.fill(-1);
    for (const QString& pattern : folded)
        for (QChar c : pattern)
        {
            const char16_t unit = c.unicode();
            if (unit < 0x80 && mAsciiSymbols[unit] < 0)
                mAsciiSymbols[unit] = mAlphabet++;
            else if (unit >= 0x80 && !mOtherSymbols.contains(unit))
                mOtherSymbols.insert(unit, mAlphabet++);
        }
}

int PatternAutomaton::Symbol(char16_t c) const
{
    if (c < 0x80)
        return mAsciiSymbols[c];
    return mOtherSymbols.value(c, -1);
}

int PatternAutomaton::AddState()
{
    mNext.insert(mNext.end(), size_t(mAlphabet), -1);
    mNode.push_back(-1);
    return int(mNode.size()) - 1;
}

void PatternAutomaton::AddPattern(const QString& pattern, int nodeId)
{
    mLength[nodeId] = int(pattern.size());
    int state = 0;
    const qsizetype size = pattern.size();
    for (qsizetype n = 0; n < size; ++n)
    {
        // Suffixes are read from the name's end, so their trie holds the patterns reversed.
        const char16_t c = pattern[mKind == SuffixKind ? size - 1 - n : n].unicode();
        const size_t slot = size_t(state) * size_t(mAlphabet) + size_t(Symbol(c));
        if (mNext[slot] < 0)
        {
            const int created = AddState();
            mNext[slot] = created;
        }
        state = mNext[slot];
    }
    // Nodes arrive in increasing order: the first pattern to end here is the lowest node.
    if (mNode[state] < 0)
        mNode[state] = nodeId;
}

bool PatternAutomaton::Better(int candidate, int current) const
{
    if (candidate < 0)
        return false;
    if (current < 0)
        return true;
    if (mLength[candidate] != mLength[current])
        return mLength[candidate] > mLength[current];
    return candidate < current;
}

void PatternAutomaton::LinkFailures()
{
    // Breadth first, so every failure target is complete before the states that fall back to it.
    std::vector<int> failure(mNode.size(), 0);
    std::deque<int> queue;
    for (int symbol = 0; symbol < mAlphabet; ++symbol)
    {
        int& next = mNext[size_t(symbol)];
        if (next < 0)
            next = 0;
        else
            queue.push_back(next);
    }
    while (!queue.empty())
    {
        const int state = queue.front();
        queue.pop_front();
        if (Better(mNode[failure[state]], mNode[state]))
            mNode[state] = mNode[failure[state]];
        for (int symbol = 0; symbol < mAlphabet; ++symbol)
        {
            int& next = mNext[size_t(state) * size_t(mAlphabet) + size_t(symbol)];
            const int fallback = mNext[size_t(failure[state]) * size_t(mAlphabet) + size_t(symbol)];
            if (next < 0)
                next = fallback;
            else
            {
                failure[next] = fallback;
                queue.push_back(next);
            }
        }
    }
}

int PatternAutomaton::Find(const FoldedName& name) const
{
    return mKind == SuffixKind ? FindSuffix(name) : FindContained(name);
}

int PatternAutomaton::FindSuffix(const FoldedName& name) const
{
    int best = -1;
    int state = 0;
    for (qsizetype n = name.size() - 1; n >= 0; --n)
    {
        const int symbol = Symbol(name[n]);
        if (symbol < 0)
            break;
        state = mNext[size_t(state) * size_t(mAlphabet) + size_t(symbol)];
        if (state < 0)
            break;
        const int node = mNode[state];
        if (node >= 0 && (best < 0 || node < best))
            best = node;
    }
    return best;
}

int PatternAutomaton::FindContained(const FoldedName& name) const
{
    int best = -1;
    int state = 0;
    for (char16_t c : name)
    {
        const int symbol = Symbol(c);
        if (symbol < 0)
        {
            // No pattern holds this character, so no match can span it.
            state = 0;
            continue;
        }
        state = mNext[size_t(state) * size_t(mAlphabet) + size_t(symbol)];
        if (Better(mNode[state], best))
            best = mNode[state];
    }
    return best;
}
