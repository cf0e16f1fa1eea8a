// The templates we ship, each against a skeleton named the way its rig convention names bones, and against the
// corpus's real skeletons and third-party template.
#include <functional>
#include <map>
#include <vector>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#include <gtest/gtest.h>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/ConfigDocument.h>
#include <zelkin/MappingTemplate.h>
#include <zelkin/NameMatcher.h>
#include <zelkin/TemplateChooser.h>
#include <zelkin/TemplateLibrary.h>
#include <zelkin/UserConfiguration.h>

#include "MixamoNames.h"

namespace
{
using Mapping = std::map<int, QString>;

const QStringList ShippedNames = {"Biped", "CharacterCreator", "CMU",    "Mixamo", "MMD",
                                  "Poser", "Rigify",           "Unreal", "VRoid",  "Zelkin"};
const char* const Digits[] = {"Thumb", "Index", "Middle", "Ring", "Pinky"};
const char* const Sides[] = {"Left", "Right"};

int NodeId(const QString& name)
{
    return BoneCatalogue::NodeId(name.toLatin1().constData());
}

// A skeleton in scene order with the node every bone must land on; bones without one must stay unmapped.
struct Rig
{
    explicit Rig(const QString& name) : templateName(name) {}

    QString templateName;
    QStringList bones;
    Mapping expected;

    Rig& Node(const QString& node, const QString& bone)
    {
        EXPECT_NE(NodeId(node), BoneCatalogue::NoNode) << node.toStdString();
        bones.append(bone);
        expected[NodeId(node)] = bone;
        return *this;
    }
    Rig& Other(const QStringList& others)
    {
        bones.append(others);
        return *this;
    }
    // bone(digit, joint) names joint 1..joints of digits thumb to pinky.
    Rig& Fingers(const QString& side, int joints, const std::function<QString(int, int)>& bone)
    {
        for (int digit = 0; digit < 5; ++digit)
            for (int joint = 1; joint <= joints; ++joint)
                Node(side + "Hand" + Digits[digit] + QString::number(joint), bone(digit, joint));
        return *this;
    }
};

// Every template of an otherwise empty user folder.
struct ShippedLibrary
{
    QTemporaryDir userDirectory;
    TemplateLibrary library {userDirectory.path()};
};

MappingTemplate Shipped(const QString& name)
{
    MappingTemplate shipped;
    QString error;
    EXPECT_TRUE(TemplateLibrary(QString()).Load(name, shipped, &error)) << error.toStdString();
    return shipped;
}

Mapping Apply(const MappingTemplate& mappingTemplate, const QStringList& bones)
{
    const NameMatcher matcher(mappingTemplate, NameMatcher::Suffix, UserConfiguration::BuiltInDelimiters());
    Mapping result;
    for (const NameMatcher::Assignment& assignment : matcher.Match(bones, QString(), {}))
        result[assignment.nodeId] = assignment.bone;
    return result;
}

// The node names themselves: "LeftHandIndex2" and so on, behind an optional prefix.
std::function<QString(int, int)> StandardFingers(const QString& prefix, const QString& side)
{
    return [=](int digit, int joint) { return prefix + side + "Hand" + Digits[digit] + QString::number(joint); };
}

Rig StandardRig()
{
    Rig rig {"Zelkin"};
    rig.Node("Reference", "Reference").Node("HipsTranslation", "HipsTranslation").Node("Hips", "Hips");
    for (const QString node : {"Spine", "Spine1", "Spine2", "Spine3", "Neck", "Neck1", "Head"})
        rig.Node(node, node);
    for (const QString side : Sides)
    {
        for (const QString part : {"Shoulder", "Arm", "ArmRoll", "ForeArm", "ForeArmRoll", "Hand", "FingerBase"})
            rig.Node(side + part, side + part);
        rig.Fingers(side, 4, StandardFingers(QString(), side));
        for (const QString part : {"UpLeg", "UpLegRoll", "Leg", "LegRoll", "Foot", "ToeBase"})
            rig.Node(side + part, side + part);
    }
    return rig;
}

Rig MixamoRig()
{
    Rig rig {"Mixamo"};
    const QString p = "mixamorig:";
    rig.Node("Hips", p + "Hips").Node("Spine", p + "Spine").Node("Spine1", p + "Spine1").Node("Spine2", p + "Spine2");
    rig.Node("Neck", p + "Neck").Node("Head", p + "Head").Other({p + "HeadTop_End"});
    // Its files list the right side first.
    for (const QString side : {"Right", "Left"})
    {
        for (const QString part : {"Shoulder", "Arm", "ForeArm", "Hand"})
            rig.Node(side + part, p + side + part);
        rig.Fingers(side, 4, StandardFingers(p, side));
    }
    for (const QString side : {"Right", "Left"})
    {
        for (const QString part : {"UpLeg", "Leg", "Foot", "ToeBase"})
            rig.Node(side + part, p + side + part);
        rig.Other({p + side + "Toe_End"});
    }
    return rig;
}

Rig UnrealRig()
{
    Rig rig {"Unreal"};
    rig.Node("Reference", "root").Node("Hips", "pelvis");
    for (const QString side : Sides)
    {
        const QString s = side == "Left" ? "_l" : "_r";
        rig.Node(side + "UpLeg", "thigh" + s).Node(side + "Leg", "calf" + s).Node(side + "Foot", "foot" + s);
        rig.Node(side + "ToeBase", "ball" + s);
        rig.Node("Leaf" + side + "LegRoll1", "calf_twist_01" + s).Node("Leaf" + side + "LegRoll2", "calf_twist_02" + s);
        rig.Node("Leaf" + side + "UpLegRoll1", "thigh_twist_01" + s);
        rig.Node("Leaf" + side + "UpLegRoll2", "thigh_twist_02" + s);
    }
    rig.Node("Spine", "spine_01").Node("Spine1", "spine_02").Node("Spine2", "spine_03").Node("Spine3", "spine_04");
    rig.Node("Spine4", "spine_05");
    for (const QString side : Sides)
    {
        const QString s = side == "Left" ? "_l" : "_r";
        rig.Node(side + "Shoulder", "clavicle" + s).Node(side + "Arm", "upperarm" + s);
        rig.Node(side + "ForeArm", "lowerarm" + s).Node(side + "Hand", "hand" + s);
        for (const QString digit : {"Index", "Middle", "Ring", "Pinky"})
            rig.Node(side + "InHand" + digit, digit.toLower() + "_metacarpal" + s);
        rig.Fingers(side, 3, [&](int digit, int joint) {
            return QString(Digits[digit]).toLower() + "_0" + QString::number(joint) + s;
        });
        rig.Node("Leaf" + side + "ForeArmRoll1", "lowerarm_twist_01" + s);
        rig.Node("Leaf" + side + "ForeArmRoll2", "lowerarm_twist_02" + s);
        rig.Node("Leaf" + side + "ArmRoll1", "upperarm_twist_01" + s);
        rig.Node("Leaf" + side + "ArmRoll2", "upperarm_twist_02" + s);
    }
    rig.Node("Neck", "neck_01").Node("Neck1", "neck_02").Node("Head", "head");
    // The IK helpers come after the body in a depth-first scene, so the limbs they end like are already taken.
    return rig.Other({"ik_foot_root", "ik_foot_l", "ik_foot_r", "ik_hand_root", "ik_hand_gun", "ik_hand_r",
                      "ik_hand_l"});
}

Rig BipedRig()
{
    Rig rig {"Biped"};
    rig.Node("Reference", "Bip01").Node("Hips", "Bip01 Pelvis").Other({"Bip01 Footsteps"});
    for (const QString side : Sides)
    {
        const QString s = side == "Left" ? "Bip01 L " : "Bip01 R ";
        const QString t = side == "Left" ? "Bip01 L" : "Bip01 R";
        rig.Node(side + "UpLeg", s + "Thigh").Node(side + "Leg", s + "Calf").Node(side + "Foot", s + "Foot");
        rig.Node(side + "ToeBase", s + "Toe0").Other({s + "Toe0Nub"});
        rig.Node("Leaf" + side + "UpLegRoll1", t + "ThighTwist").Node("Leaf" + side + "LegRoll1", t + "CalfTwist");
    }
    rig.Node("Spine", "Bip01 Spine").Node("Spine1", "Bip01 Spine1").Node("Spine2", "Bip01 Spine2");
    rig.Node("Neck", "Bip01 Neck").Node("Head", "Bip01 Head").Other({"Bip01 HeadNub"});
    for (const QString side : Sides)
    {
        const QString s = side == "Left" ? "Bip01 L " : "Bip01 R ";
        const QString t = side == "Left" ? "Bip01 L" : "Bip01 R";
        rig.Node(side + "Shoulder", s + "Clavicle").Node(side + "Arm", s + "UpperArm");
        rig.Node("Leaf" + side + "ArmRoll1", t + "UpArmTwist").Node(side + "ForeArm", s + "Forearm");
        rig.Node("Leaf" + side + "ForeArmRoll1", s + "ForeTwist").Node(side + "Hand", s + "Hand");
        // Finger<n> is the first joint, Finger<n>1 and Finger<n>2 the next ones, Finger<n>Nub the tip.
        rig.Fingers(side, 3, [&](int digit, int joint) {
            return s + "Finger" + QString::number(digit) + (joint > 1 ? QString::number(joint - 1) : QString(""));
        });
        for (int digit = 0; digit < 5; ++digit)
            rig.Other({s + "Finger" + QString::number(digit) + "Nub"});
    }
    return rig;
}

Rig CmuRig()
{
    Rig rig {"CMU"};
    rig.Node("Hips", "Hips");
    for (const QString side : Sides)
    {
        rig.Other({side.left(1) + "HipJoint"});
        for (const QString part : {"UpLeg", "Leg", "Foot", "ToeBase"})
            rig.Node(side + part, side + part);
    }
    // The back starts at LowerBack, so the rig's Spine and Spine1 are the second and third spine nodes.
    rig.Node("Spine", "LowerBack").Node("Spine1", "Spine").Node("Spine2", "Spine1");
    rig.Node("Neck", "Neck").Node("Neck1", "Neck1").Node("Head", "Head");
    for (const QString side : Sides)
    {
        for (const QString part : {"Shoulder", "Arm", "ForeArm", "Hand", "FingerBase", "HandIndex1"})
            rig.Node(side + part, side + part);
        rig.Node(side + "HandThumb1", side.left(1) + "Thumb");
    }
    return rig;
}

Rig PoserRig()
{
    Rig rig {"Poser"};
    rig.Node("Hips", "hip").Node("Spine", "abdomen").Node("Spine1", "chest").Node("Neck", "neck");
    rig.Node("Head", "head").Other({"leftEye", "rightEye"});
    const char* const poserDigits[] = {"Thumb", "Index", "Mid", "Ring", "Pinky"};
    for (const QString side : Sides)
    {
        const QString s = side.left(1).toLower();
        rig.Node(side + "Shoulder", s + "Collar").Node(side + "Arm", s + "Shldr");
        rig.Node(side + "ForeArm", s + "ForeArm").Node(side + "Hand", s + "Hand");
        rig.Fingers(side, 3, [&](int digit, int joint) { return s + poserDigits[digit] + QString::number(joint); });
    }
    for (const QString side : Sides)
    {
        const QString s = side.left(1).toLower();
        rig.Other({s + "Buttock"}).Node(side + "UpLeg", s + "Thigh").Node(side + "Leg", s + "Shin");
        rig.Node(side + "Foot", s + "Foot").Node(side + "ToeBase", s + "Toe");
    }
    return rig;
}

Rig VRoidRig()
{
    Rig rig {"VRoid"};
    rig.Node("Reference", "Root").Node("Hips", "J_Bip_C_Hips");
    for (const QString side : Sides)
    {
        const QString s = side == "Left" ? "J_Bip_L_" : "J_Bip_R_";
        rig.Node(side + "UpLeg", s + "UpperLeg").Node(side + "Leg", s + "LowerLeg").Node(side + "Foot", s + "Foot");
        rig.Node(side + "ToeBase", s + "ToeBase");
    }
    rig.Node("Spine", "J_Bip_C_Spine").Node("Spine1", "J_Bip_C_Chest").Node("Spine2", "J_Bip_C_UpperChest");
    rig.Other({"J_Sec_L_Bust1", "J_Sec_R_Bust1"}).Node("Neck", "J_Bip_C_Neck").Node("Head", "J_Bip_C_Head");
    rig.Other({"J_Adj_L_FaceEye", "J_Adj_R_FaceEye", "J_Sec_Hair1_01", "J_Sec_Hair2_01"});
    const char* const vrmDigits[] = {"Thumb", "Index", "Middle", "Ring", "Little"};
    for (const QString side : Sides)
    {
        const QString s = side == "Left" ? "J_Bip_L_" : "J_Bip_R_";
        rig.Node(side + "Shoulder", s + "Shoulder").Node(side + "Arm", s + "UpperArm");
        rig.Node(side + "ForeArm", s + "LowerArm").Node(side + "Hand", s + "Hand");
        rig.Fingers(side, 3, [&](int digit, int joint) { return s + vrmDigits[digit] + QString::number(joint); });
    }
    return rig;
}

Rig CharacterCreatorRig()
{
    Rig rig {"CharacterCreator"};
    rig.Node("Reference", "CC_Base_BoneRoot").Node("Hips", "CC_Base_Hip").Other({"CC_Base_Pelvis"});
    const char* const toes[] = {"BigToe1", "IndexToe1", "MidToe1", "RingToe1", "PinkyToe1"};
    for (const QString side : Sides)
    {
        const QString s = side == "Left" ? "CC_Base_L_" : "CC_Base_R_";
        rig.Node(side + "UpLeg", s + "Thigh").Node(side + "Leg", s + "Calf").Node(side + "Foot", s + "Foot");
        rig.Node(side + "ToeBase", s + "ToeBase");
        for (int digit = 0; digit < 5; ++digit)
            rig.Node(side + "Foot" + Digits[digit] + "1", s + toes[digit]);
        rig.Node("Leaf" + side + "LegRoll1", s + "CalfTwist01").Node("Leaf" + side + "LegRoll2", s + "CalfTwist02");
        rig.Other({s + "KneeShareBone"}).Node("Leaf" + side + "UpLegRoll1", s + "ThighTwist01");
        rig.Node("Leaf" + side + "UpLegRoll2", s + "ThighTwist02");
    }
    rig.Node("Spine", "CC_Base_Waist").Node("Spine1", "CC_Base_Spine01").Node("Spine2", "CC_Base_Spine02");
    rig.Node("Neck", "CC_Base_NeckTwist01").Node("Neck1", "CC_Base_NeckTwist02").Node("Head", "CC_Base_Head");
    rig.Other({"CC_Base_FacialBone", "CC_Base_JawRoot", "CC_Base_L_Eye", "CC_Base_R_Eye"});
    const char* const ccDigits[] = {"Thumb", "Index", "Mid", "Ring", "Pinky"};
    for (const QString side : Sides)
    {
        const QString s = side == "Left" ? "CC_Base_L_" : "CC_Base_R_";
        rig.Other({s + "RibsTwist", s + "Breast"}).Node(side + "Shoulder", s + "Clavicle");
        rig.Node(side + "Arm", s + "Upperarm").Node(side + "ForeArm", s + "Forearm").Node(side + "Hand", s + "Hand");
        rig.Fingers(side, 3, [&](int digit, int joint) { return s + ccDigits[digit] + QString::number(joint); });
        rig.Node("Leaf" + side + "ForeArmRoll1", s + "ForearmTwist01");
        rig.Node("Leaf" + side + "ForeArmRoll2", s + "ForearmTwist02").Other({s + "ElbowShareBone"});
        rig.Node("Leaf" + side + "ArmRoll1", s + "UpperarmTwist01");
        rig.Node("Leaf" + side + "ArmRoll2", s + "UpperarmTwist02");
    }
    return rig;
}

Rig RigifyRig()
{
    Rig rig {"Rigify"};
    rig.Node("Reference", "root").Node("Hips", "DEF-spine");
    for (const QString side : Sides)
    {
        const QString s = side == "Left" ? ".L" : ".R";
        rig.Other({"DEF-pelvis" + s}).Node(side + "UpLeg", "DEF-thigh" + s);
        rig.Node(side + "UpLegRoll", "DEF-thigh" + s + ".001");
        rig.Node(side + "Leg", "DEF-shin" + s).Node(side + "LegRoll", "DEF-shin" + s + ".001");
        rig.Node(side + "Foot", "DEF-foot" + s).Node(side + "ToeBase", "DEF-toe" + s);
    }
    rig.Node("Spine", "DEF-spine.001").Node("Spine1", "DEF-spine.002").Node("Spine2", "DEF-spine.003");
    const char* const rigifyDigits[] = {"thumb", "f_index", "f_middle", "f_ring", "f_pinky"};
    for (const QString side : Sides)
    {
        const QString s = side == "Left" ? ".L" : ".R";
        rig.Other({"DEF-breast" + s}).Node(side + "Shoulder", "DEF-shoulder" + s);
        rig.Node(side + "Arm", "DEF-upper_arm" + s).Node(side + "ArmRoll", "DEF-upper_arm" + s + ".001");
        rig.Node(side + "ForeArm", "DEF-forearm" + s).Node(side + "ForeArmRoll", "DEF-forearm" + s + ".001");
        rig.Node(side + "Hand", "DEF-hand" + s);
        for (int palm = 1; palm <= 4; ++palm)
            rig.Node(side + "InHand" + Digits[palm], "DEF-palm.0" + QString::number(palm) + s);
        rig.Fingers(side, 3, [&](int digit, int joint) {
            return "DEF-" + QString(rigifyDigits[digit]) + ".0" + QString::number(joint) + s;
        });
    }
    rig.Node("Neck", "DEF-spine.004").Node("Neck1", "DEF-spine.005").Node("Head", "DEF-spine.006");
    // The control and mechanism bones of a full rig carry the same part names behind other prefixes.
    return rig.Other({"ORG-thigh.L", "MCH-thigh_parent.L", "thigh_fk.L", "ORG-spine.006", "hand_ik.R"});
}

Rig MmdRig()
{
    Rig rig {"MMD"};
    rig.Other({"subete_no_oya"}).Node("Reference", "senta_").Other({"guruubu"}).Node("Hips", "kahanshin");
    for (const QString side : {"hidari", "migi"})
    {
        const QString node = side == "hidari" ? "Left" : "Right";
        rig.Node(node + "UpLeg", side + "ashi").Node(node + "Leg", side + "_hiza");
        rig.Node(node + "Foot", side + "ashi_kubi").Node(node + "ToeBase", side + "_tsumasaki");
    }
    rig.Node("Spine", "jouhanshin").Node("Spine1", "jouhanshin2").Node("Neck", "kubi").Node("Head", "atama");
    rig.Other({"ryoume", "hidarime", "migime"});
    const char* const words[] = {"oyayubi", "nin_yubi", "nakayubi", "kusuriyubi", "koyubi"};
    for (const QString side : {"hidari", "migi"})
    {
        const QString node = side == "hidari" ? "Left" : "Right";
        rig.Node(node + "Shoulder", side + "kata").Node(node + "Arm", side + "ude");
        rig.Node(node + "ArmRoll", side + "ude_nejiri").Node(node + "ForeArm", side + "_hiji");
        rig.Node(node + "ForeArmRoll", side + "te_nejiri").Node(node + "Hand", side + "tekubi");
        // The thumb counts from 0; every finger ends in a "saki" (tip) bone, the index finger's under its
        // long name.
        rig.Fingers(node, 4, [&](int digit, int joint) {
            if (joint == 4)
                return side + "_" + (digit == 1 ? QString("hitosashiyubi") : QString(words[digit])) + "_saki";
            return side + "_" + words[digit] + "_" + QString::number(digit == 0 ? joint - 1 : joint);
        });
    }
    return rig.Other({"hidariashi_ik", "migiashi_ik", "hidari_tsumasaki_ik", "migi_tsumasaki_ik"});
}

std::vector<Rig> ConventionRigs()
{
    return {StandardRig(), MixamoRig(),  UnrealRig(),          BipedRig(),  CmuRig(),
            PoserRig(),    VRoidRig(),   CharacterCreatorRig(), RigifyRig(), MmdRig()};
}

// The corpus BVH's joints and end sites ("EndSite_<parent>", as importers name them), parents first, and which of
// them have no children.
void ReadBvhHierarchy(const QString& fileName, QStringList& bones, QSet<QString>& leaves)
{
    QFile file(fileName);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly | QIODevice::Text)) << fileName.toStdString();
    QTextStream in(&file);
    QStringList open;
    QString pending;
    while (!in.atEnd())
    {
        const QStringList words = in.readLine().simplified().split(' ', Qt::SkipEmptyParts);
        if (words.isEmpty() || words.first() == "MOTION")
            continue;
        if ((words.first() == "ROOT" || words.first() == "JOINT") && words.size() > 1)
            pending = words.at(1);
        else if (words.first() == "End")
            pending = "EndSite_" + open.last();
        else if (words.first() == "{")
        {
            if (!open.isEmpty())
                leaves.remove(open.last());
            bones.append(pending);
            leaves.insert(pending);
            open.append(pending);
        }
        else if (words.first() == "}")
            open.removeLast();
    }
}
} // namespace

TEST(ShippedTemplates, EveryFileListsAllNodesInOrderAndNoPatternEndsAnEarlierOnesBone)
{
    for (const QString& name : ShippedNames)
    {
        SCOPED_TRACE(name.toStdString());
        ConfigDocument document;
        ASSERT_TRUE(document.Load(TemplateLibrary::ShippedDirectory() + "/" + name + ".xml"));
        const QList<QStringList> rows = document.ReadTable(QString(), "match_list", {"key", "value", "use_root"});
        ASSERT_EQ(rows.size(), BoneCatalogue::NodeCount);
        for (int nodeId = 0; nodeId < BoneCatalogue::NodeCount; ++nodeId)
        {
            EXPECT_EQ(rows[nodeId][0], BoneCatalogue::NodeName(nodeId));
            EXPECT_TRUE(rows[nodeId][2] == "true" || rows[nodeId][2] == "false") << nodeId;
        }
        // A bone named exactly like a pattern must reach that pattern's node, not an earlier one whose pattern
        // it happens to end with (the first fitting entry decides).
        const MappingTemplate shipped = Shipped(name);
        const NameMatcher matcher(shipped, NameMatcher::Suffix, UserConfiguration::BuiltInDelimiters());
        for (int nodeId = 0; nodeId < BoneCatalogue::NodeCount; ++nodeId)
        {
            const MappingTemplate::Entry& entry = shipped.GetEntry(nodeId);
            if (entry.pattern.isEmpty() || entry.useRoot)
                continue;
            EXPECT_EQ(matcher.MatchOne(entry.pattern, u"", {}), nodeId) << entry.pattern.toStdString();
        }
    }
}

// The library hands out the shipped templates from a table made at build time; it must say what the files say.
TEST(ShippedTemplates, TheCompiledInTableHoldsWhatTheFilesSay)
{
    QStringList files = QDir(TemplateLibrary::ShippedDirectory()).entryList({"*.xml"}, QDir::Files);
    files.replaceInStrings(".xml", "");
    files.sort(Qt::CaseInsensitive);
    EXPECT_EQ(files, ShippedNames);
    EXPECT_EQ(TemplateLibrary(QString()).Names(), ShippedNames);
    for (const QString& name : files)
    {
        SCOPED_TRACE(name.toStdString());
        MappingTemplate fromFile;
        ASSERT_TRUE(fromFile.Load(TemplateLibrary::ShippedDirectory() + "/" + name + ".xml"));
        const MappingTemplate fromTable = Shipped(name);
        for (int nodeId = 0; nodeId < BoneCatalogue::NodeCount; ++nodeId)
            EXPECT_EQ(fromTable.GetEntry(nodeId), fromFile.GetEntry(nodeId))
                << BoneCatalogue::NodeName(nodeId) << ": " << fromFile.GetEntry(nodeId).pattern.toStdString();
    }
}

TEST(ShippedTemplates, EachMapsItsConventionsSkeletonExactly)
{
    for (const Rig& rig : ConventionRigs())
    {
        SCOPED_TRACE(rig.templateName.toStdString());
        for (int nodeId : BoneCatalogue::RequiredNodes())
            EXPECT_EQ(rig.expected.count(nodeId), 1u) << "the test rig lacks " << BoneCatalogue::NodeName(nodeId);
        const Mapping result = Apply(Shipped(rig.templateName), rig.bones);
        for (const auto& [nodeId, bone] : rig.expected)
            EXPECT_EQ(result.count(nodeId) ? result.at(nodeId) : QString(), bone) << BoneCatalogue::NodeName(nodeId);
        for (const auto& [nodeId, bone] : result)
            EXPECT_EQ(rig.expected.count(nodeId), 1u)
                << bone.toStdString() << " went to " << BoneCatalogue::NodeName(nodeId);
    }
}

TEST(ShippedTemplates, EachConventionChoosesItsOwnTemplate)
{
    ShippedLibrary shipped;
    const TemplateChooser chooser(shipped.library, NameMatcher::Suffix, UserConfiguration::BuiltInDelimiters());
    EXPECT_EQ(chooser.TemplateNames(), ShippedNames);
    EXPECT_TRUE(chooser.Problems().isEmpty());
    for (const Rig& rig : ConventionRigs())
    {
        SCOPED_TRACE(rig.templateName.toStdString());
        const TemplateChooser::Result result = chooser.Choose(rig.bones, {});
        EXPECT_EQ(result.templateName, rig.templateName);
        EXPECT_EQ(result.requiredMapped, BoneCatalogue::RequiredCount);
        EXPECT_EQ(result.mappedNodes, int(rig.expected.size()));
        EXPECT_EQ(result.candidateBones, rig.bones.size());
    }
}

TEST(ShippedTemplates, CorpusMixamoCharacterChoosesMixamoWithEveryBoneButTheEnds)
{
    const Rig rig = MixamoRig();
    ASSERT_EQ(rig.bones, MixamoNames()); // the list above is the real file's, in its scene order
    QSet<QString> leaves;
    for (const QString& bone : MixamoNames())
        if (bone.endsWith("_End") || bone.endsWith("4"))
            leaves.insert(bone);
    ASSERT_EQ(leaves.size(), 13);
    ShippedLibrary shipped;
    const TemplateChooser chooser(shipped.library, NameMatcher::Suffix, UserConfiguration::BuiltInDelimiters());
    const TemplateChooser::Result result = chooser.Choose(MixamoNames(), leaves);
    EXPECT_EQ(result.templateName, "Mixamo");
    EXPECT_EQ(result.mappedNodes, 62);
    EXPECT_EQ(result.candidateBones, 62);
    EXPECT_DOUBLE_EQ(result.Score(), 1.0);
    EXPECT_EQ(result.Summary(), "Template \"Mixamo\": 62 of 62 bones mapped (100%).");
    QStringList unmapped = MixamoNames();
    for (const NameMatcher::Assignment& assignment : result.assignments)
        unmapped.removeOne(assignment.bone);
    EXPECT_EQ(unmapped, QStringList({"mixamorig:HeadTop_End", "mixamorig:RightToe_End", "mixamorig:LeftToe_End"}));

    // The same rig under a namespace-free prefix still goes to Mixamo.
    QStringList prefixed;
    for (const QString& bone : MixamoNames())
        prefixed.append(QString(bone).replace("mixamorig:", "Hero_"));
    EXPECT_EQ(chooser.Choose(prefixed, {}, "Hero").templateName, "Mixamo");
}

TEST(ShippedTemplates, CorpusPoserFigureChoosesPoserAndMapsAllButTheMissingHead)
{
    QStringList bones;
    QSet<QString> leaves;
    ReadBvhHierarchy(ZELKIN_CORPUS_DIR "/skeletons/poser_pirouette.bvh", bones, leaves);
    ASSERT_EQ(bones.size(), 25); // 20 joints and 5 end sites
    EXPECT_TRUE(leaves.contains("EndSite_neck"));
    EXPECT_FALSE(leaves.contains("neck"));

    ShippedLibrary shipped;
    const TemplateChooser chooser(shipped.library, NameMatcher::Suffix, UserConfiguration::BuiltInDelimiters());
    const TemplateChooser::Result result = chooser.Choose(bones, leaves);
    EXPECT_EQ(result.templateName, "Poser");
    EXPECT_EQ(result.requiredMapped, BoneCatalogue::RequiredCount - 1);
    EXPECT_EQ(result.candidateBones, 20);
    EXPECT_EQ(result.mappedNodes, 18); // the buttocks have no node
    EXPECT_DOUBLE_EQ(result.Score(), 0.9);

    Mapping mapped;
    for (const NameMatcher::Assignment& assignment : result.assignments)
        mapped[assignment.nodeId] = assignment.bone;
    EXPECT_EQ(mapped.count(NodeId("Head")), 0u);
    const std::map<QString, QString> expected = {
        {"Hips", "hip"},          {"Spine", "abdomen"},        {"Spine1", "chest"},       {"Neck", "neck"},
        {"RightShoulder", "rcollar"}, {"RightArm", "rshldr"},  {"RightForeArm", "rforearm"}, {"RightHand", "rhand"},
        {"LeftShoulder", "lcollar"},  {"LeftArm", "lshldr"},   {"LeftForeArm", "lforearm"},   {"LeftHand", "lhand"},
        {"RightUpLeg", "rthigh"},     {"RightLeg", "rshin"},   {"RightFoot", "rfoot"},        {"LeftUpLeg", "lthigh"},
        {"LeftLeg", "lshin"},         {"LeftFoot", "lfoot"}};
    for (const auto& [node, bone] : expected)
        EXPECT_EQ(mapped[NodeId(node)], bone) << node.toStdString();
}

TEST(ShippedTemplates, MmdMapsEveryBoneTheCorpusTemplateKnowsToTheSameNode)
{
    MappingTemplate corpus;
    QString error;
    ASSERT_TRUE(corpus.Load(ZELKIN_CORPUS_DIR "/templates/mmd_romaji.xml", &error)) << error.toStdString();
    // Its romanised names only: the entries that merely repeat the node's own name are placeholders.
    QStringList bones;
    for (int nodeId = 0; nodeId < BoneCatalogue::NodeCount; ++nodeId)
    {
        const QString pattern = corpus.GetEntry(nodeId).pattern;
        if (!pattern.isEmpty() && pattern != BoneCatalogue::NodeName(nodeId) && !bones.contains(pattern))
            bones.append(pattern);
    }
    ASSERT_EQ(bones.size(), 59);
    const Mapping theirs = Apply(corpus, bones);
    EXPECT_EQ(Apply(Shipped("MMD"), bones), theirs);
    EXPECT_EQ(theirs.size(), size_t(bones.size()));

    ShippedLibrary shipped;
    const TemplateChooser chooser(shipped.library, NameMatcher::Suffix, UserConfiguration::BuiltInDelimiters());
    EXPECT_EQ(chooser.Choose(bones, {}).templateName, "MMD");
}
