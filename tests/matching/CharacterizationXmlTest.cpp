#include <cmath>

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationXml.h>
#include <zelkin/ConfigDocument.h>

#include "MessageCapture.h"

namespace
{
int Node(const char* name)
{
    return BoneCatalogue::NodeId(name);
}

void Normalised(float x, float y, float z, float w, float q[4])
{
    const float length = std::sqrt(x * x + y * y + z * z + w * w);
    q[0] = x / length;
    q[1] = y / length;
    q[2] = z / length;
    q[3] = w / length;
}

// Pre- and post-rotations, limits and the parent offset travel only for nodes with limits (full geometry).
CharacterJointGeometry SampleJoint(int seed, ZELRotationOrder order, bool fullGeometry)
{
    CharacterJointGeometry joint;
    float q[4];
    joint.SetTranslate(1.25f * seed, -0.3333333f, 123456.7f);
    Normalised(0.1f * seed, -0.2f, 0.3f, 0.9f, q);
    joint.SetRotateQ(q[0], q[1], q[2], q[3]);
    joint.SetScale(1.0f, 0.5f, 2.0f);
    joint.SetRotationOrder(order);
    if (!fullGeometry)
        return joint;
    Normalised(-0.4f, 0.1f, 0.05f, 0.8f, q);
    joint.SetPreRotQ(q[0], q[1], q[2], q[3]);
    Normalised(0.0f, 0.7f, 0.0f, 0.7f, q);
    joint.SetPostRotQ(q[0], q[1], q[2], q[3]);
    Normalised(0.3f, 0.3f, -0.3f, 0.6f, q);
    joint.SetParentOffsetRotateQ(q[0], q[1], q[2], q[3]);
    joint.SetMinRLimit(-45.5f, -10.0f, 0.0f);
    joint.SetMaxRLimit(90.0f, 12.125f, 170.0f);
    joint.SetMinRLimitEnable(true, false, true);
    joint.SetMaxRLimitEnable(false, true, true);
    return joint;
}

Characterization SampleCharacterization()
{
    Characterization characterization(QStringLiteral("Hero <&> \"キャラ\""));
    const char* nodes[] = {"Hips", "LeftUpLeg", "LeftArm", "Head", "LeafRightForeArmRoll5"};
    int seed = 0;
    for (const char* node : nodes)
    {
        characterization.SetBone(Node(node), QStringLiteral("rig:%1 骨 'x'").arg(node));
        characterization.SetJointGeometry(Node(node), SampleJoint(seed, ZELRotationOrder(seed * 3 % 13), seed % 2 == 1));
        ++seed;
    }
    return characterization;
}

bool SameRotation(const float* a, const float* b)
{
    const double dot = double(a[0]) * b[0] + double(a[1]) * b[1] + double(a[2]) * b[2] + double(a[3]) * b[3];
    return std::fabs(std::fabs(dot) - 1.0) < 1e-6;
}

// Rotations travel as Euler angles, so they come back as the same rotation rather than the same four floats.
void ExpectEqual(const Characterization& read, const Characterization& original)
{
    Characterization adjusted = read;
    for (int nodeId = 0; nodeId < BoneCatalogue::NodeCount; ++nodeId)
    {
        const CharacterJointGeometry& a = read.GetJointGeometry(nodeId);
        const CharacterJointGeometry& b = original.GetJointGeometry(nodeId);
        CharacterJointGeometry joint = a;
        const struct
        {
            const float* (CharacterJointGeometry::*get)() const;
            void (CharacterJointGeometry::*set)(float, float, float, float);
        } rotations[] = {{&CharacterJointGeometry::GetRotateQ, &CharacterJointGeometry::SetRotateQ},
                         {&CharacterJointGeometry::GetPreRotQ, &CharacterJointGeometry::SetPreRotQ},
                         {&CharacterJointGeometry::GetPostRotQ, &CharacterJointGeometry::SetPostRotQ},
                         {&CharacterJointGeometry::GetParentOffsetRotateQ,
                          &CharacterJointGeometry::SetParentOffsetRotateQ}};
        for (const auto& rotation : rotations)
        {
            const float* q = (b.*rotation.get)();
            EXPECT_TRUE(SameRotation((a.*rotation.get)(), q)) << "node " << nodeId;
            (joint.*rotation.set)(q[0], q[1], q[2], q[3]);
        }
        const uint32_t flags = adjusted.GetNodeFlags(nodeId);
        adjusted.SetJointGeometry(nodeId, joint);
        adjusted.SetNodeFlags(nodeId, flags);
    }
    EXPECT_TRUE(adjusted == original);
}

QStringList JointValue(const ConfigDocument& document, const char* joint, const QString& key)
{
    for (const ConfigDocument::Pair& pair : document.ReadPairs("joints", joint))
        if (pair.first == key)
            return pair.second.split(' ');
    return {};
}
} // namespace

TEST(CharacterizationXml, WrittenAndReadBackIsEqualInBothModes)
{
    QTemporaryDir dir;
    const Characterization original = SampleCharacterization();
    for (CharacterizationXml::Mode mode : {CharacterizationXml::Normal, CharacterizationXml::Raw})
    {
        SCOPED_TRACE(mode);
        const QString path = dir.filePath(QStringLiteral("c%1.xml").arg(mode));
        QString error;
        ASSERT_TRUE(CharacterizationXml::Write(original, path, mode, true, &error)) << error.toStdString();
        Characterization read;
        ASSERT_TRUE(CharacterizationXml::Read(path, read, &error)) << error.toStdString();
        ExpectEqual(read, original);
    }
}

TEST(CharacterizationXml, RawModeKeepsWholeFlagWords)
{
    Characterization original;
    original.SetBone(Node("Hips"), "hips");
    original.SetNodeFlags(Node("Hips"), 0x105);
    ConfigDocument document;
    ASSERT_TRUE(CharacterizationXml::ToDocument(original, document, CharacterizationXml::Raw, true));
    EXPECT_EQ(document.ReadList("", "bone_used")[Node("Hips")], "261");
    Characterization read;
    ASSERT_TRUE(CharacterizationXml::FromDocument(document, read));
    EXPECT_EQ(read.GetNodeFlags(Node("Hips")), 0x105u);

    ASSERT_TRUE(CharacterizationXml::ToDocument(original, document, CharacterizationXml::Normal, true));
    EXPECT_EQ(document.ReadList("", "bone_used")[Node("Hips")], "1");
}

TEST(CharacterizationXml, KeysComeInTheirOrderAndFullGeometryOnlyForFlaggedNodes)
{
    const Characterization original = SampleCharacterization();
    ConfigDocument document;
    ASSERT_TRUE(CharacterizationXml::ToDocument(original, document, CharacterizationXml::Normal, true));
    EXPECT_EQ(document.Keys("joints"),
              QStringList({"Hips", "LeftUpLeg", "LeftArm", "Head", "LeafRightForeArmRoll5"})); // node order
    QStringList keys;
    for (const ConfigDocument::Pair& pair : document.ReadPairs("joints", "LeftUpLeg"))
        keys.append(pair.first);
    EXPECT_EQ(keys, QStringList({"Translate", "Rotate", "Scale", "MinRLimitEnable", "MaxRLimitEnable", "PreRot",
                                 "PostRot", "MinRLimit", "MaxRLimit", "RotateParentOffset", "RotationOrder"}));
    keys.clear();
    for (const ConfigDocument::Pair& pair : document.ReadPairs("joints", "Hips")) // no limit enabled
        keys.append(pair.first);
    EXPECT_EQ(keys, QStringList({"Translate", "Rotate", "Scale", "MinRLimitEnable", "MaxRLimitEnable", "RotationOrder"}));

    EXPECT_EQ(JointValue(document, "LeftUpLeg", "MinRLimitEnable"), QStringList({"1", "0", "1"}));
    EXPECT_EQ(JointValue(document, "LeftUpLeg", "MaxRLimitEnable"), QStringList({"0", "1", "1"}));
    EXPECT_EQ(JointValue(document, "LeftUpLeg", "RotationOrder"), QStringList({"3"}));
    EXPECT_EQ(JointValue(document, "LeftUpLeg", "MaxRLimit"), QStringList({"90", "12.125", "170"}));
}

TEST(CharacterizationXml, TinyNumbersAreWrittenAsZero)
{
    Characterization characterization;
    characterization.SetBone(Node("Hips"), "hips");
    CharacterJointGeometry joint;
    joint.SetTranslate(1e-7f, 2.0f, -3.0f);
    characterization.SetJointGeometry(Node("Hips"), joint);
    ConfigDocument document;
    ASSERT_TRUE(CharacterizationXml::ToDocument(characterization, document, CharacterizationXml::Normal, true));
    EXPECT_EQ(JointValue(document, "Hips", "Translate"), QStringList({"0", "2", "-3"}));
    EXPECT_EQ(JointValue(document, "Hips", "Rotate"), QStringList({"0", "0", "0"}));
    EXPECT_EQ(CharacterizationXml::FormatNumber(-1e-6f), "-1e-06");
    EXPECT_EQ(CharacterizationXml::FormatNumber(-9.99e-7f), "0");
    EXPECT_EQ(CharacterizationXml::FormatNumber(0.1f), "0.1");
    EXPECT_EQ(CharacterizationXml::FormatNumber(std::nanf("")), "0");
}

TEST(CharacterizationXml, AnEmptyCharacterizationStillListsEveryNode)
{
    ConfigDocument document;
    ASSERT_TRUE(CharacterizationXml::ToDocument(Characterization(), document, CharacterizationXml::Normal, true));
    EXPECT_EQ(document.ReadValue("", "name"), Characterization::DefaultName());
    EXPECT_EQ(document.ReadList("", "bone_correspondance"), QStringList(BoneCatalogue::NodeCount, QString()));
    EXPECT_EQ(document.ReadList("", "bone_used"), QStringList(BoneCatalogue::NodeCount, "0"));
    EXPECT_TRUE(document.Keys("joints").isEmpty());
}

TEST(CharacterizationXml, WithoutRotationLimitsTheLimitsAreLeftOut)
{
    const Characterization original = SampleCharacterization();
    ConfigDocument document;
    ASSERT_TRUE(CharacterizationXml::ToDocument(original, document, CharacterizationXml::Normal, false));
    EXPECT_EQ(JointValue(document, "LeftUpLeg", "MinRLimitEnable"), QStringList({"0", "0", "0"}));
    EXPECT_TRUE(JointValue(document, "LeftUpLeg", "MinRLimit").isEmpty());
    Characterization read;
    ASSERT_TRUE(CharacterizationXml::FromDocument(document, read));
    EXPECT_EQ(read.GetJointGeometry(Node("LeftUpLeg")).GetLimitEnableMask(), 0);
    EXPECT_EQ(read.GetBoneNames(), original.GetBoneNames());
}

TEST(CharacterizationXml, BadFilesReportAndChangeNothing)
{
    QTemporaryDir dir;
    const QByteArray valid = "<config_root><name value=\"n\"/><bone_correspondance><item value=\"hips\"/>"
                             "<item value=\"h\"/></bone_correspondance><bone_used><item value=\"1\"/>"
                             "<item value=\"1\"/></bone_used><joints><Reference>%1</Reference></joints></config_root>";
    const struct
    {
        QByteArray bytes;
        const char* expected;
    } cases[] = {
        {"<config_root><name value=\"n\"/>", "Error in parsing"},
        {"<config_root><name value=\"n\"/></config_root>", "bone_correspondance"},
        {QByteArray(valid).replace("<item value=\"1\"/>", "<item value=\"one\"/>").replace("%1", ""), "bone_used"},
        {QByteArray(valid).replace("%1", "<item key=\"Translate\" value=\"1 2\"/>"), "Translate"},
        {QByteArray(valid).replace("%1", "<item key=\"Scale\" value=\"1 x 2\"/>"), "Scale"},
        {QByteArray(valid).replace("%1", "<item key=\"Rotate\" value=\"1 nan 2\"/>"), "Rotate"},
        {QByteArray(valid).replace("%1", "<item key=\"Translate\" value=\"1e39 0 0\"/>"), "Translate"},
        {QByteArray(valid).replace("%1", "<item key=\"RotationOrder\" value=\"13\"/>"), "RotationOrder"},
    };
    const Characterization before = SampleCharacterization();
    for (const auto& bad : cases)
    {
        SCOPED_TRACE(bad.expected);
        QFile file(dir.filePath("bad.xml"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bad.bytes);
        file.close();
        Characterization characterization = before;
        QString error;
        MessageCapture messages;
        EXPECT_FALSE(CharacterizationXml::Read(dir.filePath("bad.xml"), characterization, &error));
        EXPECT_TRUE(error.contains(bad.expected)) << error.toStdString();
        EXPECT_TRUE(characterization == before);
    }
    Characterization characterization;
    QString error;
    EXPECT_FALSE(CharacterizationXml::Read(dir.filePath("missing.xml"), characterization, &error));
    EXPECT_TRUE(error.contains("missing.xml"));
}

TEST(CharacterizationXml, ShortListsAndUnknownJointsAreTolerated)
{
    ConfigDocument document;
    ASSERT_TRUE(document.LoadFromData("<config_root><bone_correspondance><item value=\"\"/><item value=\"pelvis\"/>"
                                      "</bone_correspondance><joints><NotANode><item key=\"Translate\" value=\"1 2 3\"/>"
                                      "</NotANode><Hips><item key=\"Translate\" value=\" 1  2 3 \"/></Hips>"
                                      "<Head><item key=\"Translate\" value=\"4 5 6\"/></Head></joints></config_root>"));
    Characterization read;
    ASSERT_TRUE(CharacterizationXml::FromDocument(document, read));
    EXPECT_EQ(read.GetName(), Characterization::DefaultName());
    EXPECT_EQ(read.GetBone(Node("Hips")), "pelvis");
    EXPECT_EQ(read.AssignedCount(), 1);
    EXPECT_EQ(read.GetJointGeometry(Node("Hips")).GetTranslate()[2], 3.0f);
    EXPECT_EQ(read.GetJointGeometry(Node("Head")).GetTranslate()[0], 0.0f); // the head has no bone
}

TEST(CharacterizationXml, BoneCorrespondenceFilesGiveTheNodeBoneNames)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("rig" + CharacterizationXml::BonesExtension());
    ASSERT_TRUE(CharacterizationXml::Write(SampleCharacterization(), path, CharacterizationXml::Normal, false));
    const QStringList names = CharacterizationXml::ReadBoneCorrespondence(path);
    ASSERT_EQ(names.size(), BoneCatalogue::NodeCount);
    EXPECT_EQ(names, SampleCharacterization().GetBoneNames());

    QFile shortFile(dir.filePath("short.bones.xml"));
    ASSERT_TRUE(shortFile.open(QIODevice::WriteOnly));
    shortFile.write("<config_root><bone_correspondance><item value=\"root\"/></bone_correspondance></config_root>");
    shortFile.close();
    const QStringList padded = CharacterizationXml::ReadBoneCorrespondence(shortFile.fileName());
    ASSERT_EQ(padded.size(), BoneCatalogue::NodeCount);
    EXPECT_EQ(padded[0], "root");

    QString error;
    EXPECT_TRUE(CharacterizationXml::ReadBoneCorrespondence(dir.filePath("none.bones.xml"), &error).isEmpty());
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(CharacterizationXml::BonesFileFilter(), "Bone correspondance file (*.bones.xml)");
}

TEST(CharacterizationXml, AFailedWriteReportsAndKeepsTheOldFile)
{
    QTemporaryDir dir;
    QString error;
    // The target is a folder: nothing can replace it.
    EXPECT_FALSE(CharacterizationXml::Write(SampleCharacterization(), dir.path(), CharacterizationXml::Normal, true, &error));
    EXPECT_FALSE(error.isEmpty());

    Characterization control;
    control.SetBone(Node("Hips"), QString("bad") + QChar(0x07));
    EXPECT_FALSE(CharacterizationXml::Write(control, dir.filePath("c.xml"), CharacterizationXml::Normal, true, &error));
    EXPECT_TRUE(error.contains("XML")) << error.toStdString();
    EXPECT_FALSE(QFile::exists(dir.filePath("c.xml")));
}
