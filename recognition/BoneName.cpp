#include "BoneName.h"

#include <algorithm>
#include <vector>

#include "NameLexicon.h"

namespace
{
bool IsJapanese(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= 0x3040 && u <= 0x30ff) || (u >= 0x3400 && u <= 0x9fff) || (u >= 0xf900 && u <= 0xfaff);
}

// A word boundary inside a run of letters and digits: lower to upper ("lThigh"), the last of several capitals
// before a lower-case letter ("LThigh"), and letter to digit either way ("Spine1", "Finger0").
bool StartsWord(QStringView text, int at)
{
    const QChar before = text[at - 1];
    const QChar here = text[at];
    if (before.isDigit() != here.isDigit())
        return true;
    if (before.isLower() && here.isUpper())
        return true;
    return at + 1 < text.size() && before.isUpper() && here.isUpper() && text[at + 1].isLower();
}

// Splits on everything that is not a letter or digit, on Japanese characters, and at word boundaries.
QStringList SplitWords(QStringView text)
{
    QStringList words;
    int start = -1;
    for (int at = 0; at <= text.size(); ++at)
    {
        const bool inWord = at < text.size() && text[at].isLetterOrNumber() && !IsJapanese(text[at]);
        if (start >= 0 && (!inWord || StartsWord(text, at)))
        {
            words.append(text.mid(start, at - start).toString().toLower());
            start = -1;
        }
        if (inWord && start < 0)
            start = at;
    }
    return words;
}

// The fewest known words that make up a glued word ("lshldr", "hidariude", "lefthand"), or nothing.
std::vector<QString> Segment(const QString& word)
{
    const int n = word.size();
    if (n > 40)
        return {};
    std::vector<int> pieces(n + 1, 1 << 20);
    std::vector<int> from(n + 1, -1);
    pieces[0] = 0;
    for (int end = 1; end <= n; ++end)
    {
        for (int begin = 0; begin < end; ++begin)
        {
            if (pieces[begin] >= (1 << 20))
                continue;
            const QStringView piece = QStringView(word).mid(begin, end - begin);
            // A lone "l" or "r" is a side only at the start ("lThigh"); elsewhere it would split anything.
            const bool known = piece.size() == 1 ? begin == 0 && (piece[0] == u'l' || piece[0] == u'r')
                                                 : lexicon::Find(piece) != nullptr;
            if (known && pieces[begin] + 1 < pieces[end])
            {
                pieces[end] = pieces[begin] + 1;
                from[end] = begin;
            }
        }
    }
    std::vector<QString> result;
    if (from[n] < 0)
        return result;
    for (int end = n; end > 0; end = from[end])
        result.push_back(word.mid(from[end], end - from[end]));
    std::reverse(result.begin(), result.end());
    return result.size() > 1 ? result : std::vector<QString>();
}

// A side letter glued to the first letter of "upper" or "fore" before the limb's word: "LUArm", "RFArm".
std::vector<QString> Abbreviated(const QString& word, const QString& next)
{
    const bool limb = next == QLatin1String("arm") || next == QLatin1String("leg");
    if (word.size() != 2 || (word[0] != u'l' && word[0] != u'r') || !limb)
        return {};
    if (word[1] == u'u')
        return {word.left(1), QStringLiteral("upper")};
    if (word[1] == u'f')
        return {word.left(1), QStringLiteral("fore")};
    return {};
}

struct Reader
{
    NameReading reading;
    std::vector<QString> words;
    bool sideSeen = false;
    bool sidesDisagree = false;

    void Take(const WordMeaning& meaning)
    {
        if (meaning.side != Side::None)
        {
            sidesDisagree = sidesDisagree || (sideSeen && reading.side != meaning.side);
            reading.side = meaning.side;
            sideSeen = true;
        }
        Raise(meaning.role, meaning.weight);
        Raise(meaning.other, meaning.otherWeight);
    }

    void Raise(Role role, float weight)
    {
        if (role != Role::Count)
            reading.roles[int(role)] = std::max(reading.roles[int(role)], weight);
    }

    void ReadJapanese(QStringView text)
    {
        for (int at = 0; at < text.size();)
        {
            int length = 0;
            const WordMeaning* meaning = IsJapanese(text[at]) ? lexicon::FindJapanese(text, at, length) : nullptr;
            if (meaning != nullptr)
                Take(*meaning);
            at += std::max(length, 1);
        }
        // Deform copies, parents and cancels of a bone: "足D", "肩P", "肩C", "足先EX".
        static const QString kCopyMarks = QStringLiteral("DPC");
        const int last = text.size() - 1;
        if (last > 0 && IsJapanese(text[last - 1]) && kCopyMarks.contains(text[last]))
            Raise(Role::Helper, 1.0f);
        if (text.contains(QLatin1String("EX")))
            Raise(Role::Helper, 1.0f);
    }

    void ReadWords(QStringView text)
    {
        const QStringList split = SplitWords(text);
        for (qsizetype at = 0; at < split.size(); ++at)
        {
            const QString& word = split[at];
            if (word.front().isDigit())
                continue;
            std::vector<QString> pieces = lexicon::Find(word) != nullptr ? std::vector<QString>() : Segment(word);
            if (at + 1 < split.size() && pieces.empty())
                pieces = Abbreviated(word, split[at + 1]);
            if (pieces.empty())
                words.push_back(word);
            else
                words.insert(words.end(), pieces.begin(), pieces.end());
        }
        for (size_t i = 0; i < words.size(); ++i)
        {
            const WordMeaning* pair = i + 1 < words.size() ? lexicon::Compound(words[i], words[i + 1]) : nullptr;
            if (pair != nullptr)
            {
                Take(*pair);
                ++i;
            }
            else if (const WordMeaning* meaning = lexicon::Find(words[i]); meaning != nullptr && !meaning->modifier)
                Take(*meaning);
        }
    }

    void Settle();
};

void Reader::Settle()
{
    if (sidesDisagree)
        reading.side = Side::None;
    auto& roles = reading.roles;
    const auto at = [&roles](Role role) -> float& { return roles[int(role)]; };
    // A hip with a side is a thigh ("LeftHip", "lhip").
    if (reading.side != Side::None && at(Role::Hips) > 0.0f)
    {
        at(Role::Thigh) = std::max(at(Role::Thigh), 0.7f);
        at(Role::Hips) = 0.1f;
    }
    // A finger word names the finger; the hand or foot beside it only says where it is.
    const float finger = std::max({at(Role::Thumb), at(Role::Index), at(Role::Middle), at(Role::Ring),
                                   at(Role::Pinky), at(Role::Finger)});
    if (finger > 0.0f)
    {
        at(Role::Hand) = std::min(at(Role::Hand), 0.2f);
        at(Role::Foot) = std::min(at(Role::Foot), 0.2f);
        at(Role::Toe) = std::min(at(Role::Toe), 0.4f);
    }
    if (at(Role::Metacarpal) > 0.0f)
        for (Role digit : {Role::Thumb, Role::Index, Role::Middle, Role::Ring, Role::Pinky, Role::Finger})
            at(digit) = std::min(at(digit), 0.5f);
    // Necks and spines have no twist nodes: "NeckTwist01" is a neck.
    if (at(Role::Neck) > 0.0f || at(Role::Spine) > 0.0f)
        at(Role::Twist) = 0.0f;
    // An end, helper or accessory word outweighs the body part it belongs to ("Toe_End", "ik_foot_l").
    const float accessory = reading.Accessory();
    if (accessory >= 0.8f)
    {
        for (Role role : {Role::Hips, Role::Spine, Role::Chest, Role::Neck, Role::Head, Role::Clavicle,
                          Role::UpperArm, Role::ForeArm, Role::Hand, Role::Thigh, Role::Shin, Role::Foot, Role::Toe,
                          Role::Thumb, Role::Index, Role::Middle, Role::Ring, Role::Pinky, Role::Finger,
                          Role::Metacarpal, Role::FingerBase})
            at(role) *= 0.5f;
    }
}

QString Unqualified(const QString& folded)
{
    // Namespaces and paths: "mixamorig:Hips", "rig:char:LeftArm", "|root|hips".
    const int cut = std::max(folded.lastIndexOf(QLatin1Char(':')), folded.lastIndexOf(QLatin1Char('|')));
    return cut >= 0 && cut + 1 < folded.size() ? folded.mid(cut + 1) : folded;
}
} // namespace

bool NameReading::SaysAnything() const
{
    return std::any_of(roles.begin(), roles.end(), [](float weight) { return weight > 0.0f; });
}

Role NameReading::Strongest(float* weight) const
{
    const auto best = std::max_element(roles.begin(), roles.end());
    if (weight != nullptr)
        *weight = *best;
    return *best > 0.0f ? Role(best - roles.begin()) : Role::Count;
}

float NameReading::Support(std::initializer_list<Role> wanted) const
{
    float own = 0.0f;
    for (Role role : wanted)
        own = std::max(own, Of(role));
    if (own > 0.0f)
        return own;
    float strongest = 0.0f;
    Strongest(&strongest);
    return strongest >= 0.6f ? -0.7f * strongest : 0.0f;
}

void NameReading::Hear(Role role, Side heardSide, float weight)
{
    const bool trunk = role == Role::Hips || role == Role::Spine || role == Role::Chest || role == Role::Neck ||
                       role == Role::Head;
    // A name that gives a side is no trunk bone, and a name's own side outranks another source's.
    if ((trunk && side != Side::None) || (side != Side::None && heardSide != Side::None && heardSide != side))
        return;
    if (side == Side::None)
        side = heardSide;
    roles[int(role)] = std::max(roles[int(role)], weight);
}

float NameReading::Support(Role role, Side wanted) const
{
    const float support = Support(role);
    if (side != Side::None && wanted != Side::None && side != wanted)
        return std::min(support, 0.0f) - 0.5f;
    return support;
}

float NameReading::Accessory() const
{
    return std::max({Of(Role::Twist), Of(Role::End), Of(Role::Helper), Of(Role::Root), Of(Role::Face),
                     Of(Role::Hair), Of(Role::Cloth), Of(Role::Tail), Of(Role::Prop)});
}

NameReading BoneName::Read(const QString& name)
{
    const QString text = Unqualified(name.normalized(QString::NormalizationForm_KC));
    Reader reader;
    if (std::any_of(text.begin(), text.end(), IsJapanese))
        reader.ReadJapanese(text);
    reader.ReadWords(text);
    reader.Settle();
    return reader.reading;
}

QStringList BoneName::Words(const QString& name)
{
    Reader reader;
    reader.ReadWords(Unqualified(name.normalized(QString::NormalizationForm_KC)));
    QStringList words;
    for (const QString& word : reader.words)
        words.append(word);
    return words;
}
