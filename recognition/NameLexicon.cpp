#include "NameLexicon.h"

#include <QHash>
#include <QString>

namespace
{
struct Entry
{
    const char* word; // UTF-8
    WordMeaning meaning;
};

constexpr Role N = Role::Count;

WordMeaning M(Role role, float weight, Role other = N, float otherWeight = 0.0f)
{
    WordMeaning meaning;
    meaning.role = role;
    meaning.weight = weight;
    meaning.other = other;
    meaning.otherWeight = otherWeight;
    return meaning;
}

WordMeaning SideWord(Side side)
{
    WordMeaning meaning;
    meaning.side = side;
    return meaning;
}

WordMeaning Modifier()
{
    WordMeaning meaning;
    meaning.modifier = true;
    return meaning;
}

// Words that name a body part, an accessory or a side. Weights below 1 mark words that also mean something else.
const Entry kWords[] = {
    // Sides.
    {"l", SideWord(Side::Left)}, {"left", SideWord(Side::Left)}, {"lft", SideWord(Side::Left)},
    {"lt", SideWord(Side::Left)}, {"hidari", SideWord(Side::Left)},
    {"r", SideWord(Side::Right)}, {"right", SideWord(Side::Right)}, {"rgt", SideWord(Side::Right)},
    {"rt", SideWord(Side::Right)}, {"migi", SideWord(Side::Right)},
    // Modifiers, resolved with their neighbour.
    {"up", Modifier()}, {"upper", Modifier()}, {"fore", Modifier()}, {"lower", Modifier()}, {"low", Modifier()},
    {"base", Modifier()},
    // Trunk.
    {"hips", M(Role::Hips, 1.0f)}, {"hip", M(Role::Hips, 0.8f, Role::Thigh, 0.3f)}, {"pelvis", M(Role::Hips, 1.0f)},
    {"pelv", M(Role::Hips, 0.9f)}, {"kahanshin", M(Role::Hips, 1.0f)}, {"coxa", M(Role::Hips, 0.6f)},
    {"spine", M(Role::Spine, 1.0f)}, {"spn", M(Role::Spine, 0.8f)}, {"abdomen", M(Role::Spine, 0.9f)},
    {"abdomenlower", M(Role::Spine, 0.9f)}, {"abdomenupper", M(Role::Spine, 0.9f)}, {"abs", M(Role::Spine, 0.5f)},
    {"belly", M(Role::Spine, 0.8f)}, {"stomach", M(Role::Spine, 0.8f)}, {"torso", M(Role::Spine, 0.6f)},
    {"waist", M(Role::Spine, 0.5f, Role::Hips, 0.4f)}, {"back", M(Role::Spine, 0.4f)},
    {"lowerback", M(Role::Spine, 0.9f)}, {"body", M(Role::Spine, 0.3f, Role::Root, 0.3f)},
    {"jouhanshin", M(Role::Spine, 1.0f)}, {"chest", M(Role::Chest, 1.0f)}, {"ribcage", M(Role::Chest, 0.9f)},
    {"ribs", M(Role::Chest, 0.8f)}, {"thorax", M(Role::Chest, 0.9f)}, {"upperchest", M(Role::Chest, 1.0f)},
    {"neck", M(Role::Neck, 1.0f)}, {"kubi", M(Role::Neck, 0.9f)}, {"head", M(Role::Head, 1.0f)},
    {"skull", M(Role::Head, 0.8f)}, {"atama", M(Role::Head, 1.0f)}, {"cranium", M(Role::Head, 0.8f)},
    // Arms.
    {"clavicle", M(Role::Clavicle, 1.0f)}, {"clav", M(Role::Clavicle, 1.0f)}, {"collar", M(Role::Clavicle, 0.9f)},
    {"collarbone", M(Role::Clavicle, 1.0f)}, {"scapula", M(Role::Clavicle, 0.8f)},
    {"shoulder", M(Role::Clavicle, 0.6f, Role::UpperArm, 0.4f)}, {"shldr", M(Role::UpperArm, 0.6f, Role::Clavicle, 0.3f)},
    {"kata", M(Role::Clavicle, 0.9f)}, {"arm", M(Role::UpperArm, 0.7f, Role::ForeArm, 0.15f)},
    {"upperarm", M(Role::UpperArm, 1.0f)}, {"uparm", M(Role::UpperArm, 1.0f)}, {"humerus", M(Role::UpperArm, 0.9f)},
    {"bicep", M(Role::UpperArm, 0.6f)}, {"ude", M(Role::UpperArm, 0.9f)}, {"forearm", M(Role::ForeArm, 1.0f)},
    {"lowerarm", M(Role::ForeArm, 1.0f)}, {"elbow", M(Role::ForeArm, 0.8f)}, {"hiji", M(Role::ForeArm, 1.0f)},
    {"radius", M(Role::ForeArm, 0.6f)}, {"ulna", M(Role::ForeArm, 0.6f)}, {"hand", M(Role::Hand, 1.0f)},
    {"wrist", M(Role::Hand, 0.8f)}, {"palm", M(Role::Hand, 0.5f, Role::Metacarpal, 0.3f)},
    {"tekubi", M(Role::Hand, 1.0f)}, {"te", M(Role::Hand, 0.5f)},
    // Legs.
    {"thigh", M(Role::Thigh, 1.0f)}, {"upleg", M(Role::Thigh, 1.0f)}, {"upperleg", M(Role::Thigh, 1.0f)},
    {"femur", M(Role::Thigh, 0.9f)}, {"ashi", M(Role::Thigh, 0.8f)}, {"leg", M(Role::Shin, 0.5f, Role::Thigh, 0.45f)},
    {"shin", M(Role::Shin, 1.0f)}, {"calf", M(Role::Shin, 1.0f)}, {"knee", M(Role::Shin, 0.8f)},
    {"lowerleg", M(Role::Shin, 1.0f)}, {"tibia", M(Role::Shin, 0.9f)}, {"crus", M(Role::Shin, 0.8f)},
    {"hiza", M(Role::Shin, 1.0f)}, {"foot", M(Role::Foot, 1.0f)}, {"ankle", M(Role::Foot, 0.8f)},
    {"ashikubi", M(Role::Foot, 1.0f)}, {"heel", M(Role::Foot, 0.4f)}, {"tarsal", M(Role::Foot, 0.5f)},
    {"metatarsal", M(Role::Toe, 0.5f, Role::Foot, 0.4f)}, {"metatarsals", M(Role::Toe, 0.5f, Role::Foot, 0.4f)},
    {"toe", M(Role::Toe, 1.0f)}, {"toes", M(Role::Toe, 1.0f)}, {"toebase", M(Role::Toe, 1.0f)},
    {"ball", M(Role::Toe, 0.9f)}, {"tsumasaki", M(Role::Toe, 1.0f)},
    // Fingers.
    {"thumb", M(Role::Thumb, 1.0f)}, {"pollex", M(Role::Thumb, 1.0f)}, {"oyayubi", M(Role::Thumb, 1.0f)},
    {"oya", M(Role::Thumb, 0.7f)}, {"index", M(Role::Index, 1.0f)}, {"pointer", M(Role::Index, 0.8f)},
    {"forefinger", M(Role::Index, 1.0f)}, {"hitosashi", M(Role::Index, 1.0f)},
    {"hitosashiyubi", M(Role::Index, 1.0f)}, {"nin", M(Role::Index, 0.7f)}, {"middle", M(Role::Middle, 1.0f)},
    {"mid", M(Role::Middle, 0.7f)}, {"naka", M(Role::Middle, 0.8f)}, {"nakayubi", M(Role::Middle, 1.0f)},
    {"ring", M(Role::Ring, 1.0f)}, {"kusuri", M(Role::Ring, 0.8f)}, {"kusuriyubi", M(Role::Ring, 1.0f)},
    {"pinky", M(Role::Pinky, 1.0f)}, {"pinkie", M(Role::Pinky, 1.0f)}, {"little", M(Role::Pinky, 0.9f)},
    {"koyubi", M(Role::Pinky, 1.0f)}, {"ko", M(Role::Pinky, 0.4f)}, {"finger", M(Role::Finger, 0.8f)},
    {"fingers", M(Role::Finger, 0.8f)}, {"digit", M(Role::Finger, 0.6f)}, {"yubi", M(Role::Finger, 0.7f)},
    {"metacarpal", M(Role::Metacarpal, 1.0f)}, {"metacarpals", M(Role::Metacarpal, 1.0f)},
    {"carpal", M(Role::Metacarpal, 0.9f)}, {"fingerbase", M(Role::FingerBase, 1.0f)},
    // Bones that are no body part of their own.
    {"twist", M(Role::Twist, 1.0f)}, {"roll", M(Role::Twist, 0.9f)}, {"nejiri", M(Role::Twist, 1.0f)},
    {"tw", M(Role::Twist, 0.6f)}, {"end", M(Role::End, 1.0f)}, {"nub", M(Role::End, 1.0f)},
    {"tip", M(Role::End, 0.9f)}, {"site", M(Role::End, 0.9f)}, {"endsite", M(Role::End, 1.0f)},
    {"top", M(Role::End, 0.5f)}, {"saki", M(Role::End, 0.8f)}, {"leaf", M(Role::End, 0.5f)},
    {"ik", M(Role::Helper, 1.0f)}, {"fk", M(Role::Helper, 0.6f)}, {"pole", M(Role::Helper, 1.0f)},
    {"target", M(Role::Helper, 0.9f)}, {"tgt", M(Role::Helper, 0.9f)}, {"ctrl", M(Role::Helper, 1.0f)},
    {"control", M(Role::Helper, 1.0f)}, {"ctl", M(Role::Helper, 1.0f)}, {"con", M(Role::Helper, 0.6f)},
    {"mch", M(Role::Helper, 1.0f)}, {"org", M(Role::Helper, 0.7f)}, {"helper", M(Role::Helper, 1.0f)},
    {"dummy", M(Role::Helper, 1.0f)}, {"cancel", M(Role::Helper, 1.0f)}, {"share", M(Role::Helper, 0.9f)},
    {"corrective", M(Role::Helper, 1.0f)}, {"correct", M(Role::Helper, 0.8f)}, {"adjust", M(Role::Helper, 0.8f)},
    {"driver", M(Role::Helper, 0.8f)}, {"locator", M(Role::Helper, 0.8f)}, {"effector", M(Role::Helper, 0.8f)},
    {"goal", M(Role::Helper, 0.7f)}, {"aim", M(Role::Helper, 0.6f)}, {"lookat", M(Role::Helper, 0.8f)},
    {"pec", M(Role::Helper, 0.8f)}, {"buttock", M(Role::Helper, 0.5f)}, {"glute", M(Role::Helper, 0.5f)},
    {"root", M(Role::Root, 1.0f)}, {"armature", M(Role::Root, 1.0f)}, {"reference", M(Role::Root, 0.9f)},
    {"world", M(Role::Root, 0.9f)}, {"ground", M(Role::Root, 0.9f)}, {"master", M(Role::Root, 0.8f)},
    {"origin", M(Role::Root, 0.8f)}, {"center", M(Role::Root, 0.8f)}, {"centre", M(Role::Root, 0.8f)},
    {"senta", M(Role::Root, 0.8f)}, {"cog", M(Role::Root, 0.8f)}, {"com", M(Role::Root, 0.6f)},
    {"trajectory", M(Role::Root, 0.9f)}, {"motion", M(Role::Root, 0.6f)}, {"mover", M(Role::Root, 0.8f)},
    {"footsteps", M(Role::Root, 0.9f)}, {"groove", M(Role::Root, 0.8f)}, {"koshi", M(Role::Root, 0.5f)},
    {"eye", M(Role::Face, 1.0f)}, {"eyes", M(Role::Face, 1.0f)}, {"eyeball", M(Role::Face, 1.0f)},
    {"eyelid", M(Role::Face, 1.0f)}, {"lid", M(Role::Face, 0.8f)}, {"brow", M(Role::Face, 1.0f)},
    {"eyebrow", M(Role::Face, 1.0f)}, {"jaw", M(Role::Face, 1.0f)}, {"chin", M(Role::Face, 0.9f)},
    {"tongue", M(Role::Face, 1.0f)}, {"teeth", M(Role::Face, 1.0f)}, {"tooth", M(Role::Face, 1.0f)},
    {"lip", M(Role::Face, 1.0f)}, {"lips", M(Role::Face, 1.0f)}, {"mouth", M(Role::Face, 1.0f)},
    {"nose", M(Role::Face, 1.0f)}, {"cheek", M(Role::Face, 1.0f)}, {"ear", M(Role::Face, 0.9f)},
    {"face", M(Role::Face, 0.9f)}, {"forehead", M(Role::Face, 1.0f)}, {"me", M(Role::Face, 0.4f)},
    {"hair", M(Role::Hair, 1.0f)}, {"ponytail", M(Role::Hair, 1.0f)}, {"bang", M(Role::Hair, 0.8f)},
    {"bangs", M(Role::Hair, 0.9f)}, {"braid", M(Role::Hair, 0.9f)}, {"skirt", M(Role::Cloth, 1.0f)},
    {"cape", M(Role::Cloth, 1.0f)}, {"cloak", M(Role::Cloth, 1.0f)}, {"coat", M(Role::Cloth, 0.9f)},
    {"cloth", M(Role::Cloth, 1.0f)}, {"dress", M(Role::Cloth, 0.9f)}, {"sleeve", M(Role::Cloth, 0.9f)},
    {"ribbon", M(Role::Cloth, 0.9f)}, {"tie", M(Role::Cloth, 0.6f)}, {"necktie", M(Role::Cloth, 1.0f)},
    {"bust", M(Role::Cloth, 1.0f)}, {"breast", M(Role::Cloth, 1.0f)}, {"boob", M(Role::Cloth, 1.0f)},
    {"sec", M(Role::Cloth, 0.7f)}, {"jiggle", M(Role::Cloth, 0.9f)}, {"phys", M(Role::Cloth, 0.8f)},
    {"physics", M(Role::Cloth, 0.8f)}, {"spring", M(Role::Cloth, 0.7f)}, {"dyn", M(Role::Cloth, 0.7f)},
    {"dynamic", M(Role::Cloth, 0.7f)}, {"belt", M(Role::Cloth, 0.8f)}, {"bag", M(Role::Cloth, 0.8f)},
    {"scarf", M(Role::Cloth, 1.0f)}, {"hood", M(Role::Cloth, 0.9f)}, {"tail", M(Role::Tail, 1.0f)},
    {"shippo", M(Role::Tail, 1.0f)}, {"wing", M(Role::Tail, 0.9f)}, {"wings", M(Role::Tail, 0.9f)},
    {"prop", M(Role::Prop, 1.0f)}, {"weapon", M(Role::Prop, 1.0f)}, {"gun", M(Role::Prop, 0.9f)},
    {"sword", M(Role::Prop, 1.0f)}, {"shield", M(Role::Prop, 1.0f)}, {"socket", M(Role::Prop, 0.9f)},
    {"attach", M(Role::Prop, 0.9f)}, {"attachment", M(Role::Prop, 0.9f)}, {"holster", M(Role::Prop, 1.0f)},
    {"slot", M(Role::Prop, 0.7f)}, {"item", M(Role::Prop, 0.7f)}, {"rifle", M(Role::Prop, 1.0f)},
    {"pistol", M(Role::Prop, 1.0f)},
};

// Two words that mean together what neither says alone.
struct Pair
{
    const char* first;
    const char* second;
    WordMeaning meaning;
};

const Pair kCompounds[] = {
    {"upper", "arm", M(Role::UpperArm, 1.0f)},   {"up", "arm", M(Role::UpperArm, 1.0f)},
    {"fore", "arm", M(Role::ForeArm, 1.0f)},     {"lower", "arm", M(Role::ForeArm, 1.0f)},
    {"low", "arm", M(Role::ForeArm, 1.0f)},      {"up", "leg", M(Role::Thigh, 1.0f)},
    {"upper", "leg", M(Role::Thigh, 1.0f)},      {"lower", "leg", M(Role::Shin, 1.0f)},
    {"low", "leg", M(Role::Shin, 1.0f)},         {"upper", "body", M(Role::Spine, 1.0f)},
    {"lower", "body", M(Role::Hips, 1.0f)},      {"upper", "chest", M(Role::Chest, 1.0f)},
    {"lower", "back", M(Role::Spine, 0.9f)},     {"lower", "chest", M(Role::Chest, 0.9f)},
    {"toe", "base", M(Role::Toe, 1.0f)},         {"finger", "base", M(Role::FingerBase, 1.0f)},
    {"ashi", "kubi", M(Role::Foot, 1.0f)},       {"te", "kubi", M(Role::Hand, 1.0f)},
    {"tsuma", "saki", M(Role::Toe, 1.0f)},       {"oya", "yubi", M(Role::Thumb, 1.0f)},
    {"hito", "sashi", M(Role::Index, 1.0f)},     {"nin", "yubi", M(Role::Index, 1.0f)},
    {"naka", "yubi", M(Role::Middle, 1.0f)},     {"kusuri", "yubi", M(Role::Ring, 1.0f)},
    {"ko", "yubi", M(Role::Pinky, 1.0f)},        {"head", "top", M(Role::End, 1.0f)},
    {"end", "site", M(Role::End, 1.0f)},
};

// Japanese words, matched longest first inside names that have no separators.
const Entry kJapanese[] = {
    {"左", SideWord(Side::Left)}, {"右", SideWord(Side::Right)},
    {"下半身", M(Role::Hips, 1.0f)}, {"上半身", M(Role::Spine, 1.0f)}, {"首", M(Role::Neck, 1.0f)},
    {"頭", M(Role::Head, 1.0f)}, {"肩", M(Role::Clavicle, 1.0f)}, {"腕", M(Role::UpperArm, 1.0f)},
    {"ひじ", M(Role::ForeArm, 1.0f)}, {"肘", M(Role::ForeArm, 1.0f)}, {"手首", M(Role::Hand, 1.0f)},
    {"手", M(Role::Hand, 0.6f)}, {"足", M(Role::Thigh, 0.8f)}, {"脚", M(Role::Thigh, 0.8f)},
    {"ひざ", M(Role::Shin, 1.0f)}, {"膝", M(Role::Shin, 1.0f)}, {"足首", M(Role::Foot, 1.0f)},
    {"つま先", M(Role::Toe, 1.0f)}, {"爪先", M(Role::Toe, 1.0f)}, {"親指", M(Role::Thumb, 1.0f)},
    {"人指", M(Role::Index, 1.0f)}, {"人差指", M(Role::Index, 1.0f)}, {"人差し指", M(Role::Index, 1.0f)},
    {"中指", M(Role::Middle, 1.0f)}, {"薬指", M(Role::Ring, 1.0f)}, {"小指", M(Role::Pinky, 1.0f)},
    {"指", M(Role::Finger, 0.7f)}, {"捩", M(Role::Twist, 1.0f)}, {"捻", M(Role::Twist, 1.0f)},
    {"先", M(Role::End, 0.8f)}, {"目", M(Role::Face, 1.0f)}, {"両目", M(Role::Face, 1.0f)},
    {"舌", M(Role::Face, 1.0f)}, {"顎", M(Role::Face, 1.0f)}, {"眉", M(Role::Face, 1.0f)},
    {"歯", M(Role::Face, 1.0f)}, {"耳", M(Role::Face, 0.9f)}, {"口", M(Role::Face, 0.9f)},
    {"センター", M(Role::Root, 0.9f)}, {"グルーブ", M(Role::Root, 0.9f)}, {"全ての親", M(Role::Root, 1.0f)},
    {"操作中心", M(Role::Root, 1.0f)}, {"腰", M(Role::Root, 0.5f)}, {"キャンセル", M(Role::Helper, 1.0f)},
    {"ダミー", M(Role::Helper, 1.0f)}, {"髪", M(Role::Hair, 1.0f)}, {"スカート", M(Role::Cloth, 1.0f)},
    {"胸", M(Role::Cloth, 0.6f)}, {"乳", M(Role::Cloth, 1.0f)}, {"尻尾", M(Role::Tail, 1.0f)},
    {"しっぽ", M(Role::Tail, 1.0f)}, {"武器", M(Role::Prop, 1.0f)},
    // Chinese, where it differs from the Japanese ("脚" is a foot there, a leg here: left to the shape).
    {"骨盆", M(Role::Hips, 1.0f)}, {"脊椎", M(Role::Spine, 1.0f)}, {"颈", M(Role::Neck, 1.0f)},
    {"脖子", M(Role::Neck, 1.0f)}, {"头", M(Role::Head, 1.0f)}, {"锁骨", M(Role::Clavicle, 1.0f)},
    {"上臂", M(Role::UpperArm, 1.0f)}, {"大臂", M(Role::UpperArm, 1.0f)}, {"前臂", M(Role::ForeArm, 1.0f)},
    {"小臂", M(Role::ForeArm, 1.0f)}, {"手腕", M(Role::Hand, 1.0f)}, {"手掌", M(Role::Hand, 0.8f)},
    {"大腿", M(Role::Thigh, 1.0f)}, {"小腿", M(Role::Shin, 1.0f)}, {"脚踝", M(Role::Foot, 1.0f)},
    {"脚趾", M(Role::Toe, 1.0f)}, {"拇指", M(Role::Thumb, 1.0f)}, {"食指", M(Role::Index, 1.0f)},
    {"无名指", M(Role::Ring, 1.0f)}, {"手指", M(Role::Finger, 0.8f)}, {"眼", M(Role::Face, 0.9f)},
    {"下巴", M(Role::Face, 1.0f)}, {"头发", M(Role::Hair, 1.0f)}, {"裙", M(Role::Cloth, 1.0f)},
    {"尾巴", M(Role::Tail, 1.0f)}, {"根骨骼", M(Role::Root, 1.0f)},
};

struct Tables
{
    QHash<QString, WordMeaning> words;
    QHash<QString, WordMeaning> compounds; // "first second"
    QHash<QString, WordMeaning> japanese;
    int longestJapanese = 0;

    Tables()
    {
        for (const Entry& entry : kWords)
            words.insert(QString::fromUtf8(entry.word), entry.meaning);
        for (const Pair& pair : kCompounds)
            compounds.insert(QString::fromUtf8(pair.first) + QLatin1Char(' ') + QString::fromUtf8(pair.second),
                             pair.meaning);
        for (const Entry& entry : kJapanese)
        {
            const QString word = QString::fromUtf8(entry.word);
            japanese.insert(word, entry.meaning);
            longestJapanese = std::max(longestJapanese, int(word.size()));
        }
    }
};

const Tables& TheTables()
{
    static const Tables tables;
    return tables;
}

const WordMeaning* FindIn(const QHash<QString, WordMeaning>& table, QStringView key)
{
    const auto found = table.constFind(key.toString());
    return found == table.constEnd() ? nullptr : &found.value();
}
} // namespace

namespace lexicon
{
const WordMeaning* Find(QStringView word)
{
    const WordMeaning* meaning = FindIn(TheTables().words, word);
    // Plurals of the known words: "eyebrows", "lashes" are the worse for no entry of their own.
    if (meaning == nullptr && word.size() > 3 && word.endsWith(u's'))
        meaning = FindIn(TheTables().words, word.chopped(1));
    return meaning;
}

const WordMeaning* Compound(QStringView first, QStringView second)
{
    return FindIn(TheTables().compounds, first.toString() + QLatin1Char(' ') + second.toString());
}

const WordMeaning* FindJapanese(QStringView text, int at, int& length)
{
    const Tables& tables = TheTables();
    for (length = std::min<int>(tables.longestJapanese, text.size() - at); length > 0; --length)
    {
        if (const WordMeaning* meaning = FindIn(tables.japanese, text.mid(at, length)))
            return meaning;
    }
    return nullptr;
}
} // namespace lexicon
