// The zelkin program run as a user runs it: exit status, one line on stderr, files left alone on failure.
#include <cmath>
#include <cstdlib>
#include <cstring>

#include <QByteArray>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <zelkin/CharacterJointGeometry.h>
#include <zelkin/ZELSolver.h>

#include "CliProcess.h"

namespace
{
// Hips and a fully defined left knee with a limit, the right-arm limb flag on unless asked otherwise.
QByteArray sampleStream(bool bigEndian, bool rightArmInverted = true)
{
    ZELCharacterDefinition definition {};
    definition.mUsedNodes[1] = 1;
    definition.mUsedNodes[3] = 7;
    CharacterJointGeometry records[ZELNodeCount];
    records[1].SetTranslate(0.0f, 95.5f, 0.0f);
    records[3].SetTranslate(9.0f, 48.0f, 0.5f);
    records[3].SetMaxRLimit(0.0f, 0.0f, 2.5f);
    records[3].SetMaxRLimitEnable(false, false, true);
    records[3].SetRotationOrder(ZELEulerZXY);
    const int32_t limbs[4] = {0, 0, 0, rightArmInverted ? 1 : 0};
    ZELCharacter* character = ZELCharacterCreate(&definition, std::malloc);
    ZELCharacterSetJointGeometries(&definition, character, records, ZELNodeCount, limbs);
    int32_t length = 0;
    void* bytes = ZELCharacterizationStreamWrite(&length, &definition, character, bigEndian, std::malloc, std::free);
    ZELCharacterDestroy(character, std::free);
    QByteArray stream(static_cast<const char*>(bytes), length);
    std::free(bytes);
    return stream;
}
} // namespace

TEST(InspectCommand, ReportsHeaderFlagsAndRecordsAsJson)
{
    QTemporaryDir dir;
    const QString path = writeFile(dir, "big.zelc", sampleStream(true));
    const ProcessResult run = zelkin({"inspect", path, "--json"});
    ASSERT_EQ(run.status, 0) << run.err.constData();

    const QJsonObject report = QJsonDocument::fromJson(run.out).object();
    EXPECT_EQ(report["byteOrder"].toString(), "big");
    EXPECT_EQ(report["version"].toInt(), 2);
    EXPECT_EQ(report["usedNodes"].toInt(), 2);
    EXPECT_EQ(report["limbFlags"].toArray(), QJsonArray({0, 0, 0, 1}));
    const QJsonArray nodes = report["nodes"].toArray();
    ASSERT_EQ(nodes.size(), 2);
    EXPECT_EQ(nodes[0].toObject()["name"].toString(), "Hips");
    EXPECT_DOUBLE_EQ(nodes[0].toObject()["translate"].toArray()[1].toDouble(), 95.5);
    EXPECT_FALSE(nodes[0].toObject().contains("rotationOrder")) << "a node with flag word 1 has no joint data";
    const QJsonObject knee = nodes[1].toObject();
    EXPECT_EQ(knee["name"].toString(), "LeftLeg");
    EXPECT_EQ(knee["rotationOrder"].toInt(), int(ZELEulerZXY));
    EXPECT_EQ(knee["limitEnableMask"].toInt(), int(CharacterJointGeometry::MaxLimitZ));
}

TEST(InspectCommand, TextReportNamesByteOrderAndNodes)
{
    QTemporaryDir dir;
    const ProcessResult run = zelkin({"inspect", writeFile(dir, "little.zelc", sampleStream(false))});
    ASSERT_EQ(run.status, 0);
    EXPECT_TRUE(run.out.contains("Byte order: little-endian"));
    EXPECT_TRUE(run.out.contains("Used nodes: 2"));
    EXPECT_TRUE(run.out.contains("right arm 1"));
    EXPECT_TRUE(run.out.contains("LeftLeg"));
}

TEST(InspectCommand, BadInputGivesStatusOneAndOneLine)
{
    QTemporaryDir dir;
    const QByteArray stream = sampleStream(false);
    QByteArray newer = stream;
    newer[4] = 3;
    const struct
    {
        QString path;
        const char* reason;
    } cases[] = {
        {dir.filePath("missing.zelc"), "no such file"},
        {writeFile(dir, "text.zelc", "HIERARCHY\nROOT Hips\n"), "not a characterization file"},
        {writeFile(dir, "cut.zelc", stream.left(stream.size() - 1)), "truncated"},
        {writeFile(dir, "header.zelc", stream.left(6)), "truncated"},
        {writeFile(dir, "newer.zelc", newer), "made by a newer version"},
        {writeFile(dir, "empty.zelc", QByteArray()), "not a characterization file"},
    };
    for (const auto& c : cases)
    {
        const ProcessResult run = zelkin({"inspect", c.path});
        EXPECT_EQ(run.status, 1) << c.reason;
        EXPECT_TRUE(run.out.isEmpty());
        EXPECT_EQ(run.err.count('\n'), 1) << run.err.constData();
        EXPECT_TRUE(run.err.contains(c.reason)) << run.err.constData();
    }
}

TEST(ConvertCommand, SwapsByteOrderBothWays)
{
    QTemporaryDir dir;
    const QString little = writeFile(dir, "little.zelc", sampleStream(false));
    const QString big = dir.filePath("big.zelc");
    ASSERT_EQ(zelkin({"convert", little, big, "--big-endian"}).status, 0);
    EXPECT_EQ(readFile(big), sampleStream(true));

    const QString back = dir.filePath("back.zelc");
    ASSERT_EQ(zelkin({"convert", big, back}).status, 0);
    EXPECT_EQ(readFile(back), sampleStream(false));
}

TEST(ConvertCommand, XmlRoundTripGivesTheSameStreamAndBoneNames)
{
    QTemporaryDir dir;
    const QString stream = writeFile(dir, "hero.zelc", sampleStream(false));
    writeFile(dir, "hero.bones.xml",
              "<config_root><name value=\"hero\"/><bone_correspondance><item value=\"\"/>"
              "<item value=\"hero_pelvis\"/><item value=\"\"/><item value=\"hero_knee_l\"/>"
              "</bone_correspondance></config_root>");
    const QString xml = dir.filePath("hero.xml");
    const ProcessResult toXml = zelkin({"convert", stream, xml});
    ASSERT_EQ(toXml.status, 0);
    EXPECT_EQ(toXml.err, "zelkin: note: an XML file cannot hold the inverted-joint flags; lost: right arm\n");
    const QByteArray document = readFile(xml);
    EXPECT_TRUE(document.contains("hero_knee_l"));
    EXPECT_TRUE(document.contains("PreRot")) << "the knee's flag word 7 must survive in the XML file";

    const QString back = dir.filePath("back.zelc");
    ASSERT_EQ(zelkin({"convert", xml, back}).status, 0);
    EXPECT_EQ(readFile(back), sampleStream(false, false));
    EXPECT_TRUE(readFile(dir.filePath("back.bones.xml")).contains("hero_pelvis"));

    const QString big = dir.filePath("big.zelc");
    ASSERT_EQ(zelkin({"convert", xml, big, "--big-endian"}).status, 0);
    EXPECT_EQ(readFile(big), sampleStream(true, false));
}

// A real skeleton's rotations go through Euler angles in the XML file and tiny numbers are written as 0: the
// round trip keeps every node and flag exactly and the geometry to within float noise.
TEST(ConvertCommand, XmlRoundTripOfARealCharacterizationKeepsItsGeometry)
{
    QTemporaryDir dir;
    const QString first = dir.filePath("xbot.zelc");
    ASSERT_EQ(zelkin({"characterize", corpusSkeleton("mixamo_xbot.glb"), "-o", first}).status, 0);
    const QString xml = dir.filePath("xbot.xml");
    const QString second = dir.filePath("again.zelc");
    ASSERT_EQ(zelkin({"convert", first, xml}).status, 0);
    ASSERT_EQ(zelkin({"convert", xml, second}).status, 0);
    EXPECT_EQ(readFile(dir.filePath("xbot.bones.xml")), readFile(dir.filePath("again.bones.xml")));

    const QJsonObject before = zelkin({"inspect", first, "--json"}).Json();
    const QJsonObject after = zelkin({"inspect", second, "--json"}).Json();
    const QJsonArray beforeNodes = before["nodes"].toArray();
    const QJsonArray afterNodes = after["nodes"].toArray();
    ASSERT_EQ(afterNodes.size(), 62);
    for (int i = 0; i < beforeNodes.size(); ++i)
    {
        const QJsonObject a = beforeNodes[i].toObject();
        const QJsonObject b = afterNodes[i].toObject();
        ASSERT_EQ(a["id"], b["id"]);
        EXPECT_EQ(a["flags"], b["flags"]);
        for (int axis = 0; axis < 3; ++axis)
            EXPECT_NEAR(a["translate"][axis].toDouble(), b["translate"][axis].toDouble(), 2e-6);
        double dot = 0.0; // q and -q are the same rotation
        for (int k = 0; k < 4; ++k)
            dot += a["rotate"][k].toDouble() * b["rotate"][k].toDouble();
        EXPECT_NEAR(std::fabs(dot), 1.0, 1e-6) << qPrintable(a["name"].toString());
    }
}

TEST(ConvertCommand, RefusesWhatItCannotWrite)
{
    QTemporaryDir dir;
    const QString stream = writeFile(dir, "ok.zelc", sampleStream(false));
    EXPECT_EQ(zelkin({"convert", stream, dir.filePath("out.xml"), "--big-endian"}).status, 1);
    EXPECT_EQ(zelkin({"convert", stream, dir.filePath("out.fbx")}).status, 1);
    EXPECT_EQ(zelkin({"convert", writeFile(dir, "in.txt", "text"), dir.filePath("out.zelc")}).status, 1);
    EXPECT_FALSE(QFile::exists(dir.filePath("out.xml")));
    EXPECT_FALSE(QFile::exists(dir.filePath("out.zelc")));
}

TEST(ConvertCommand, RefusedInputLeavesTheOutputUntouched)
{
    QTemporaryDir dir;
    const QByteArray stream = sampleStream(false);
    const QString cut = writeFile(dir, "cut.zelc", stream.left(900));
    const QString existing = writeFile(dir, "existing.zelc", "previous contents");
    const ProcessResult run = zelkin({"convert", cut, existing});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(readFile(existing), QByteArray("previous contents"));

    const QString intoMissingFolder = dir.filePath("no/such/folder/out.zelc");
    const ProcessResult unwritable = zelkin({"convert", writeFile(dir, "ok.zelc", stream), intoMissingFolder});
    EXPECT_EQ(unwritable.status, 1);
    EXPECT_TRUE(unwritable.err.contains("cannot be written"));
}

TEST(CommandLine, UnknownCommandAndMissingArgumentsAreBadInput)
{
    EXPECT_EQ(zelkin({"frobnicate"}).status, 1);
    EXPECT_EQ(zelkin({}).status, 1);
    EXPECT_EQ(zelkin({"inspect"}).status, 1);
    EXPECT_EQ(zelkin({"--help"}).status, 0);
}
