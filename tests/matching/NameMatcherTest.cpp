#include <map>
#include <random>

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/MappingTemplate.h>
#include <zelkin/NameMatcher.h>
#include <zelkin/TemplateLibrary.h>
#include <zelkin/UserConfiguration.h>

#include "MixamoNames.h"

namespace
{
using Assignments = std::map<int, QString>;

int Node(const char* name)
{
    return BoneCatalogue::NodeId(name);
}

Assignments Apply(const MappingTemplate& mappingTemplate, NameMatcher::MatchType type, const QStringList& offered,
                  const QString& prefix = QString(), NameMatcher::TakenNodes taken = {})
{
    const NameMatcher matcher(mappingTemplate, type, UserConfiguration::BuiltInDelimiters());
    Assignments result;
    for (const NameMatcher::Assignment& assignment : matcher.Match(offered, prefix, taken))
    {
        EXPECT_EQ(result.count(assignment.nodeId), 0u) << "node assigned twice";
        result[assignment.nodeId] = assignment.bone;
    }
    return result;
}

MappingTemplate ArmTemplate()
{
    MappingTemplate arms;
    arms.SetEntry(Node("LeftArm"), "Arm");
    arms.SetEntry(Node("LeftForeArm"), "ForeArm");
    return arms;
}

MappingTemplate ShippedTemplate(const QString& name)
{
    MappingTemplate shipped;
    QString error;
    EXPECT_TRUE(TemplateLibrary(QString()).Load(name, shipped, &error)) << error.toStdString();
    return shipped;
}

// A skeleton carrying the corpus template's bone names, parents first.
const QStringList MmdSkeleton = {
    "senta_",          "kahanshin",        "hidariashi",        "hidari_hiza",     "hidariashi_kubi",
    "hidari_tsumasaki", "migiashi",        "migi_hiza",         "migiashi_kubi",   "jouhanshin",
    "kubi",            "atama",            "hidarikata",        "hidariude",       "hidari_hiji",
    "hidaritekubi",    "hidari_oyayubi_0", "hidari_oyayubi_1",  "hidari_nin_yubi_1", "hidari_nin_yubi_2",
    "migikata",        "migiude",          "migi_hiji",         "migitekubi",      "migi_koyubi_1"};
} // namespace

TEST(NameMatcher, TheThirdPartyTemplateMapsItsOwnBones)
{
    MappingTemplate mmd;
    QString error;
    ASSERT_TRUE(mmd.Load(ZELKIN_CORPUS_DIR "/templates/mmd_romaji.xml", &error)) << error.toStdString();
    for (NameMatcher::MatchType type : {NameMatcher::Suffix, NameMatcher::Contains})
    {
        SCOPED_TRACE(type);
        const Assignments result = Apply(mmd, type, MmdSkeleton);
        const Assignments expected = {
            {Node("Reference"), "senta_"},          {Node("Hips"), "kahanshin"},
            {Node("LeftUpLeg"), "hidariashi"},      {Node("LeftLeg"), "hidari_hiza"},
            {Node("LeftFoot"), "hidariashi_kubi"},  {Node("RightUpLeg"), "migiashi"},
            {Node("RightLeg"), "migi_hiza"},        {Node("RightFoot"), "migiashi_kubi"},
            {Node("Spine"), "jouhanshin"},          {Node("Neck"), "kubi"},
            {Node("Head"), "atama"},                {Node("LeftShoulder"), "hidarikata"},
            {Node("LeftArm"), "hidariude"},         {Node("LeftForeArm"), "hidari_hiji"},
            {Node("LeftHand"), "hidaritekubi"},     {Node("LeftHandThumb1"), "hidari_oyayubi_0"},
            {Node("LeftHandThumb2"), "hidari_oyayubi_1"}, {Node("LeftHandIndex1"), "hidari_nin_yubi_1"},
            {Node("LeftHandIndex2"), "hidari_nin_yubi_2"}, {Node("RightShoulder"), "migikata"},
            {Node("RightArm"), "migiude"},          {Node("RightForeArm"), "migi_hiji"},
            {Node("RightHand"), "migitekubi"},      {Node("RightHandPinky1"), "migi_koyubi_1"},
        };
        EXPECT_EQ(result, expected);
        // The toe and finger bases share the foot's and hand's patterns, and the foot and hand come first.
        EXPECT_EQ(result.count(Node("LeftToeBase")), 0u);
        EXPECT_EQ(result.count(Node("LeftFingerBase")), 0u);
    }
}

TEST(NameMatcher, SuffixTakesTheFirstFittingEntryWhereContainsTakesTheLongestPattern)
{
    const MappingTemplate arms = ArmTemplate();
    EXPECT_EQ(Apply(arms, NameMatcher::Suffix, {"char_ForeArm"}), (Assignments {{Node("LeftArm"), "char_ForeArm"}}));
    EXPECT_EQ(Apply(arms, NameMatcher::Contains, {"char_ForeArm"}),
              (Assignments {{Node("LeftForeArm"), "char_ForeArm"}}));
    EXPECT_EQ(Apply(arms, NameMatcher::Contains, {"char_Arm_end"}), (Assignments {{Node("LeftArm"), "char_Arm_end"}}));
    EXPECT_TRUE(Apply(arms, NameMatcher::Suffix, {"char_Arm_end"}).empty());
}

TEST(NameMatcher, ContainsBreaksLengthTiesByTheLowerNode)
{
    MappingTemplate tied;
    tied.SetEntry(Node("RightHand"), "hand");
    tied.SetEntry(Node("LeftHand"), "HAND");
    tied.SetEntry(Node("Head"), "x");
    EXPECT_EQ(Apply(tied, NameMatcher::Contains, {"a_hand_x"}), (Assignments {{Node("LeftHand"), "a_hand_x"}}));
}

TEST(NameMatcher, CaseNeverMatters)
{
    MappingTemplate lower;
    lower.SetEntry(Node("LeftArm"), "arm");
    lower.SetEntry(Node("LeftForeArm"), "forearm");
    for (NameMatcher::MatchType type : {NameMatcher::Suffix, NameMatcher::Contains})
    {
        EXPECT_EQ(Apply(lower, type, {"CHAR_LEFTARM"}), (Assignments {{Node("LeftArm"), "CHAR_LEFTARM"}}));
        EXPECT_EQ(Apply(ArmTemplate(), type, {"char_arm"}), (Assignments {{Node("LeftArm"), "char_arm"}}));
    }
    MappingTemplate accented;
    accented.SetEntry(Node("Head"), QStringLiteral("ÉPAULE"));
    EXPECT_EQ(Apply(accented, NameMatcher::Suffix, {QStringLiteral("g_épaule")}).size(), 1u);
}

TEST(NameMatcher, ABoneWhoseDecidingNodeIsTakenStaysUnmatched)
{
    NameMatcher::TakenNodes leftArmTaken {};
    leftArmTaken[Node("LeftArm")] = true;
    EXPECT_TRUE(Apply(ArmTemplate(), NameMatcher::Suffix, {"char_ForeArm"}, QString(), leftArmTaken).empty());

    NameMatcher::TakenNodes foreArmTaken {};
    foreArmTaken[Node("LeftForeArm")] = true;
    EXPECT_TRUE(Apply(ArmTemplate(), NameMatcher::Contains, {"char_ForeArm"}, QString(), foreArmTaken).empty());

    // Within one run the first bone offered takes the node.
    EXPECT_EQ(Apply(ArmTemplate(), NameMatcher::Suffix, {"a_Arm", "b_Arm"}), (Assignments {{Node("LeftArm"), "a_Arm"}}));
}

TEST(NameMatcher, RootEntriesTakeTheTopMostOfferedBoneEvenWhenTheirNodeIsTaken)
{
    MappingTemplate rooted;
    rooted.SetEntry(Node("Reference"), "ignored", true);
    rooted.SetEntry(Node("Hips"), "Hips");
    NameMatcher::TakenNodes taken {};
    taken[Node("Reference")] = true;
    const QStringList scene = {"Rig_Root", "Rig_Hips", "Rig_Spine"};
    EXPECT_EQ(Apply(rooted, NameMatcher::Suffix, scene, QString(), taken),
              (Assignments {{Node("Reference"), "Rig_Root"}, {Node("Hips"), "Rig_Hips"}}));

    // With a prefix scope the root is the first bone carrying the prefix.
    const QStringList two = {"A_Root", "B_Root", "A_Hips", "B_Hips"};
    EXPECT_EQ(Apply(rooted, NameMatcher::Suffix, NameMatcher::BonesWithPrefix(two, "b"), "B"),
              (Assignments {{Node("Reference"), "B_Root"}, {Node("Hips"), "B_Hips"}}));

    // A lower entry that fits by suffix decides before a later root entry.
    MappingTemplate lateRoot;
    lateRoot.SetEntry(Node("Reference"), "Root");
    lateRoot.SetEntry(Node("Hips"), "", true);
    EXPECT_EQ(Apply(lateRoot, NameMatcher::Suffix, {"Root"}), (Assignments {{Node("Reference"), "Root"}}));
}

TEST(NameMatcher, BareNamesMapPrefixedAndNamespacedRigs)
{
    ASSERT_EQ(MixamoNames().size(), 65);
    const MappingTemplate standard = ShippedTemplate("Zelkin");
    QStringList charNames;
    for (const QString& name : MixamoNames())
        charNames.append(QString(name).replace("mixamorig:", "Char01_"));

    for (NameMatcher::MatchType type : {NameMatcher::Suffix, NameMatcher::Contains})
    {
        SCOPED_TRACE(type);
        for (const QStringList& scene : {MixamoNames(), charNames})
            for (const QString& prefix : {QString(), scene.first().section(QRegularExpression("[:_]"), 0, 0)})
            {
                SCOPED_TRACE(prefix.toStdString());
                const Assignments result = Apply(standard, type, NameMatcher::BonesWithPrefix(scene, prefix), prefix);
                EXPECT_EQ(result.size(), 62u); // all but the head top and the two toe ends
                const QString separator = scene.first().contains(':') ? "mixamorig:" : "Char01_";
                EXPECT_EQ(result.at(Node("LeftArm")), separator + "LeftArm");
                EXPECT_EQ(result.at(Node("LeftForeArm")), separator + "LeftForeArm");
                EXPECT_EQ(result.at(Node("Spine2")), separator + "Spine2");
                EXPECT_EQ(result.at(Node("Head")), separator + "Head");
                EXPECT_EQ(result.at(Node("RightHandPinky4")), separator + "RightHandPinky4");
                EXPECT_EQ(result.count(Node("Reference")), 0u);
            }
    }
    const MappingTemplate mixamo = ShippedTemplate("Mixamo");
    EXPECT_EQ(Apply(mixamo, NameMatcher::Contains, MixamoNames()).size(), 62u);
}

TEST(NameMatcher, StripPrefixRemovesThePrefixAndTheLongestDelimiterAfterIt)
{
    const QStringList delimiters = UserConfiguration::BuiltInDelimiters() + QStringList {"::"};
    EXPECT_EQ(NameMatcher::StripPrefix(u"Char01_LeftArm", u"char01", delimiters), u"LeftArm");
    EXPECT_EQ(NameMatcher::StripPrefix(u"Char01LeftArm", u"Char01", delimiters), u"LeftArm");
    EXPECT_EQ(NameMatcher::StripPrefix(u"Char01::LeftArm", u"Char01", delimiters), u"LeftArm");
    EXPECT_EQ(NameMatcher::StripPrefix(u"mixamorig:Hips", u"mixamorig:", delimiters), u"Hips");
    EXPECT_EQ(NameMatcher::StripPrefix(u"Char01_LeftArm", u"", delimiters), u"Char01_LeftArm");
    EXPECT_EQ(NameMatcher::StripPrefix(u"X_Char01_LeftArm", u"Char01", delimiters), u"X_Char01_LeftArm");
    // Only one delimiter goes: the template may begin with one of its own.
    EXPECT_EQ(NameMatcher::StripPrefix(u"P__x", u"P", delimiters), u"_x");
}

TEST(NameMatcher, ScopesOfferBonesInSceneOrder)
{
    const QStringList scene = {"A_Root", "b_Hips", "A_Hips", "B_Spine", "Other"};
    EXPECT_EQ(NameMatcher::BonesWithPrefix(scene, "B"), QStringList({"b_Hips", "B_Spine"}));
    EXPECT_EQ(NameMatcher::BonesWithPrefix(scene, ""), scene);
    EXPECT_EQ(NameMatcher::SelectedBones(scene, {"Other", "A_Root", "Missing"}), QStringList({"A_Root", "Other"}));

    MappingTemplate hips;
    hips.SetEntry(Node("Hips"), "Hips");
    EXPECT_EQ(Apply(hips, NameMatcher::Suffix, NameMatcher::SelectedBones(scene, {"A_Hips", "b_Hips"})),
              (Assignments {{Node("Hips"), "b_Hips"}}));
}

TEST(NameMatcher, TheAutomatonAgreesWithTheEntryByEntryRule)
{
    std::mt19937 random(3);
    const QString alphabet = QStringLiteral("aAbB_:é");
    auto randomText = [&](int maxLength) {
        QString text;
        const int length = int(random() % unsigned(maxLength + 1));
        for (int n = 0; n < length; ++n)
            text.append(alphabet[int(random() % unsigned(alphabet.size()))]);
        return text;
    };
    for (int round = 0; round < 60; ++round)
    {
        MappingTemplate randomTemplate;
        for (int nodeId = 0; nodeId < BoneCatalogue::NodeCount; ++nodeId)
            if (random() % 3 == 0)
                randomTemplate.SetEntry(nodeId, randomText(4), random() % 17 == 0);
        for (NameMatcher::MatchType type : {NameMatcher::Suffix, NameMatcher::Contains})
        {
            const NameMatcher matcher(randomTemplate, type, UserConfiguration::BuiltInDelimiters());
            NameMatcher::TakenNodes taken {};
            for (bool& node : taken)
                node = random() % 4 == 0;
            const QString root = randomText(3);
            for (int probe = 0; probe < 300; ++probe)
            {
                const QString name = random() % 10 == 0 ? root.toUpper() : randomText(8);
                ASSERT_EQ(matcher.MatchOne(name, root, taken), matcher.MatchOneDirect(name, root, taken))
                    << "name " << name.toStdString() << " type " << type;
            }
        }
    }
}

TEST(NameMatcher, TemplatesTooLargeToTabulateStillMatch)
{
    MappingTemplate huge;
    QString longPattern;
    for (int n = 0; n < 30000; ++n)
        longPattern.append(QChar(0x4E00 + n % 2000));
    huge.SetEntry(Node("Head"), longPattern);
    huge.SetEntry(Node("Hips"), "hips");
    const NameMatcher matcher(huge, NameMatcher::Contains, {});
    EXPECT_EQ(matcher.MatchOne(u"x_HIPS", u"", {}), Node("Hips"));
    EXPECT_EQ(matcher.MatchOne(QString("a" + longPattern + "b"), u"", {}), Node("Head"));
}
