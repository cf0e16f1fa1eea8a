// What names say: sides in every usual form, role words in English, romanised and Japanese, and the words that
// make a bone something other than a body part.
#include <gtest/gtest.h>

#include "BoneName.h"

namespace
{
TEST(BoneNameTest, SidesInEveryUsualForm)
{
    const char* const lefts[] = {"LeftArm",        "Left_Arm",         "arm_left",         "UpperArm_Left",
                                 "L_Thigh",        "Bip01 L Thigh",    "Bip01_L_Thigh",    "thigh.l",
                                 "thigh_l",        "thigh.L",          "l-thigh",          "lThigh",
                                 "LThigh",         "lshldr",           "hidariude",        "左腕",
                                 "DEF-upper_arm.L.001", "J_Bip_L_UpperArm", "CC_Base_L_Upperarm", "upperarm_l",
                                 "mixamorig:LeftHandIndex1", "lefthand", "Character1_LeftUpLeg_12", "LUArm",
                                 "Actor1_LFArm"};
    for (const char* name : lefts)
        EXPECT_EQ(BoneName::Read(QString::fromUtf8(name)).side, Side::Left) << name;
    const char* const rights[] = {"RightArm", "arm_right", "R_Thigh", "Bip01 R Thigh", "thigh.R", "thigh_r",
                                  "r-thigh", "rThigh",    "rshldr",  "migiude",       "右ひじ",  "CC_Base_R_Hand",
                                  "RUArm"};
    for (const char* name : rights)
        EXPECT_EQ(BoneName::Read(QString::fromUtf8(name)).side, Side::Right) << name;
    // No side: words that only start with l or r, single letters inside words, and names with both sides.
    const char* const neither[] = {"Spine1", "Hips", "Bone.012", "Joint23", "lower_back", "Root", "ring_01",
                                   "Leg", "LeftRightArm", "lid", "rue", "lf"};
    for (const char* name : neither)
        EXPECT_EQ(BoneName::Read(QString::fromUtf8(name)).side, Side::None) << name;
}

TEST(BoneNameTest, WordsAfterEverySplit)
{
    EXPECT_EQ(BoneName::Words("mixamorig:LeftHandIndex1"), QStringList({"left", "hand", "index"}));
    EXPECT_EQ(BoneName::Words("Bip01_L_UpperArm"), QStringList({"bip", "l", "upper", "arm"}));
    EXPECT_EQ(BoneName::Words("lShldrBend"), QStringList({"l", "shldr", "bend"}));
    EXPECT_EQ(BoneName::Words("LThigh"), QStringList({"l", "thigh"}));
    EXPECT_EQ(BoneName::Words("hidariashi_kubi"), QStringList({"hidari", "ashi", "kubi"}));
    EXPECT_EQ(BoneName::Words("UPPERARM_L"), QStringList({"upperarm", "l"}));
    EXPECT_EQ(BoneName::Words("rig|char:HeadTop_End"), QStringList({"head", "top", "end"}));
    // Full-width letters and digits fold to plain ones.
    EXPECT_EQ(BoneName::Words(QString::fromUtf8("ＬｅｆｔＨａｎｄ２")), QStringList({"left", "hand"}));
}

TEST(BoneNameTest, RoleWordsInEnglishAndRomanisedNames)
{
    const struct
    {
        const char* name;
        Role role;
    } cases[] = {
        {"mixamorig:LeftForeArm", Role::ForeArm}, {"LeftUpLeg", Role::Thigh},         {"lowerarm_l", Role::ForeArm},
        {"calf_l", Role::Shin},                   {"ball_l", Role::Toe},              {"clavicle_l", Role::Clavicle},
        {"LeftHip", Role::Thigh},                 {"lhip", Role::Thigh},              {"Hips", Role::Hips},
        {"CC_Base_NeckTwist01", Role::Neck},      {"index_metacarpal_l", Role::Metacarpal},
        {"LeftHandThumb1", Role::Thumb},          {"J_Bip_L_Little1", Role::Pinky},   {"LeftKnee", Role::Shin},
        {"LeftWrist", Role::Hand},                {"LeftAnkle", Role::Foot},          {"LeftElbow", Role::ForeArm},
        {"hidari_hiji", Role::ForeArm},           {"migitekubi", Role::Hand},         {"hidariashi_kubi", Role::Foot},
        {"hidari_oyayubi_0", Role::Thumb},        {"kahanshin", Role::Hips},          {"jouhanshin2", Role::Spine},
        {"upperarm_twist_01_l", Role::Twist},     {"LeftToe_End", Role::End},         {"HeadTop_End", Role::End},
        {"ik_foot_l", Role::Helper},              {"J_Sec_Hair1_01", Role::Hair},     {"jaw", Role::Face},
        {"weapon_r", Role::Prop},                 {"tail_03", Role::Tail},            {"Skirt_F_01", Role::Cloth},
        {"Armature", Role::Root},                 {"DEF-thigh.L", Role::Thigh},       {"lShin", Role::Shin},
        {"LUArm", Role::UpperArm},                {"RFArm", Role::ForeArm},           {"Eyebrows", Role::Face}};
    for (const auto& c : cases)
        EXPECT_EQ(BoneName::Read(QString::fromUtf8(c.name)).Strongest(), c.role) << c.name;
    // "Leg" alone could be either; the reading leans to the shin, as in "LeftUpLeg" / "LeftLeg".
    const NameReading leg = BoneName::Read("LeftLeg");
    EXPECT_GT(leg.Of(Role::Shin), leg.Of(Role::Thigh));
    EXPECT_GT(leg.Of(Role::Thigh), 0.0f);
    // A shoulder is a clavicle more often than an upper arm, but can be either.
    const NameReading shoulder = BoneName::Read("LeftShoulder");
    EXPECT_GT(shoulder.Of(Role::Clavicle), shoulder.Of(Role::UpperArm));
    EXPECT_GT(shoulder.Of(Role::UpperArm), 0.0f);
    EXPECT_EQ(BoneName::Read("Bone.012").Strongest(), Role::Count);
}

TEST(BoneNameTest, JapaneseAndChineseNamesWithFullWidthDigitsAndHelperMarks)
{
    const struct
    {
        const char* name;
        Role role;
        Side side;
    } cases[] = {{"左腕", Role::UpperArm, Side::Left},    {"右ひじ", Role::ForeArm, Side::Right},
                 {"左手首", Role::Hand, Side::Left},      {"左足首", Role::Foot, Side::Left},
                 {"右足", Role::Thigh, Side::Right},      {"左ひざ", Role::Shin, Side::Left},
                 {"左つま先", Role::Toe, Side::Left},     {"左親指１", Role::Thumb, Side::Left},
                 {"右人指２", Role::Index, Side::Right},  {"左小指３", Role::Pinky, Side::Left},
                 {"下半身", Role::Hips, Side::None},      {"上半身2", Role::Spine, Side::None},
                 {"首", Role::Neck, Side::None},          {"頭", Role::Head, Side::None},
                 {"左肩", Role::Clavicle, Side::Left},    {"センター", Role::Root, Side::None},
                 {"左足D", Role::Helper, Side::Left},     {"右肩P", Role::Helper, Side::Right},
                 {"左肩C", Role::Helper, Side::Left},     {"左足先EX", Role::Helper, Side::Left},
                 {"左足ＩＫ", Role::Helper, Side::Left},  {"左腕捩", Role::Twist, Side::Left},
                 {"両目", Role::Face, Side::None},        {"腰キャンセル左", Role::Helper, Side::Left},
                 // Chinese names of the same bones.
                 {"骨盆", Role::Hips, Side::None},        {"脊椎2", Role::Spine, Side::None},
                 {"头部", Role::Head, Side::None},        {"左锁骨", Role::Clavicle, Side::Left},
                 {"左上臂", Role::UpperArm, Side::Left},  {"右前臂", Role::ForeArm, Side::Right},
                 {"左手腕", Role::Hand, Side::Left},      {"右大腿", Role::Thigh, Side::Right},
                 {"左小腿", Role::Shin, Side::Left},      {"右脚踝", Role::Foot, Side::Right},
                 {"左拇指1", Role::Thumb, Side::Left},    {"右无名指2", Role::Ring, Side::Right}};
    for (const auto& c : cases)
    {
        const NameReading reading = BoneName::Read(QString::fromUtf8(c.name));
        EXPECT_EQ(reading.Strongest(), c.role) << c.name;
        EXPECT_EQ(reading.side, c.side) << c.name;
    }
}

TEST(BoneNameTest, SupportIsSilentPositiveOrAgainst)
{
    const NameReading hand = BoneName::Read("LeftHand");
    EXPECT_GT(hand.Support(Role::Hand), 0.9f);
    EXPECT_LT(hand.Support(Role::ForeArm), 0.0f);
    EXPECT_LT(hand.Support(Role::Hand, Side::Right), 0.0f);
    EXPECT_EQ(BoneName::Read("Bone.003").Support(Role::Hand), 0.0f);
    // A chest is a spine bone when asked as one.
    EXPECT_GT(BoneName::Read("chestUpper").Support({Role::Spine, Role::Chest}), 0.9f);
    // A template whose short pattern ends a sided name cannot make it a trunk bone.
    NameReading lhip = BoneName::Read("LeftHip");
    lhip.Hear(Role::Hips, Side::None, 0.7f);
    EXPECT_GT(lhip.Of(Role::Thigh), lhip.Of(Role::Hips));
}
} // namespace
