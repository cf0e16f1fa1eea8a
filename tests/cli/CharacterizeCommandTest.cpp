// Characterizing and validating real skeletons through the zelkin program: how it maps them, the findings, the
// exit status and the files it writes or leaves alone.
#include <cmath>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <zelkin/ZELSolver.h>

#include "CliProcess.h"

namespace
{
const QString MixamoPrefix = QStringLiteral("mixamorig:");
const QString LeftArmWarning =
    QStringLiteral("The left arm doesn't seem to be parallel to the X axis. There is a difference of 8.533776 "
                   "degrees between it and the X axis. This difference should be less than 2.000000 degrees.");

QJsonObject NodeNamed(const QJsonObject& report, const QString& name)
{
    for (const QJsonValue& node : report["nodes"].toArray())
    {
        if (node.toObject()["name"].toString() == name)
            return node.toObject();
    }
    return QJsonObject();
}

// The angle between the X axis and the left arm from shoulder to wrist, from the offsets in the file itself.
double PirouetteLeftArmAngle()
{
    const double forearm[3] = {28.1742, -1.7115, 0.48768};
    const double hand[3] = {22.5879, 0.773209, 7.07136};
    const double arm[3] = {forearm[0] + hand[0], forearm[1] + hand[1], forearm[2] + hand[2]};
    const double length = std::sqrt(arm[0] * arm[0] + arm[1] * arm[1] + arm[2] * arm[2]);
    return std::acos(arm[0] / length) * 57.29578;
}

void ExpectOneLineFailure(const ProcessResult& run, const char* what)
{
    EXPECT_EQ(run.status, 1) << what;
    EXPECT_TRUE(run.out.isEmpty()) << what;
    EXPECT_EQ(run.err.count('\n'), 1) << what << ": " << run.err.constData();
    EXPECT_TRUE(run.err.startsWith("zelkin: ")) << what << ": " << run.err.constData();
}
} // namespace

TEST(CharacterizeCommand, MixamoRigIsRecognizedWithEveryNodeRight)
{
    const ProcessResult run = zelkin({"characterize", corpusSkeleton("mixamo_xbot.glb"), "--json"});
    ASSERT_EQ(run.status, 0) << run.err.constData();
    const QJsonObject report = run.Json();
    EXPECT_EQ(report["state"].toInt(), 1);
    EXPECT_EQ(report["message"].toString(), "");
    EXPECT_EQ(report["method"].toString(), "recognition");
    EXPECT_TRUE(report["template"].isNull());
    EXPECT_EQ(report["mappedNodes"].toInt(), 62);
    EXPECT_EQ(report["candidateBones"].toInt(), 62) << "the three _End bones could not be nodes";
    EXPECT_DOUBLE_EQ(report["score"].toDouble(), 1.0);

    const QJsonArray nodes = report["nodes"].toArray();
    ASSERT_EQ(nodes.size(), 62);
    for (const QJsonValue& value : nodes)
    {
        const QJsonObject node = value.toObject();
        const QString bone = node["bone"].toString();
        ASSERT_TRUE(bone.startsWith(MixamoPrefix)) << qPrintable(bone);
        EXPECT_EQ(bone.mid(MixamoPrefix.size()), node["name"].toString());
        EXPECT_STREQ(ZELGetNodeNameFromId(node["id"].toInt()), qPrintable(node["name"].toString()));
        EXPECT_EQ(node["state"].toInt(), 1) << qPrintable(bone);
        EXPECT_TRUE(node["messages"].toArray().isEmpty()) << qPrintable(bone);
        EXPECT_FALSE(bone.endsWith("_End")) << qPrintable(bone);
        EXPECT_GT(node["confidence"].toDouble(), 0.6) << qPrintable(bone);
        EXPECT_GT(node["evidence"].toObject()["hierarchy"].toDouble(), 0.5) << qPrintable(bone);
    }
    const QJsonObject character = report["character"].toObject();
    EXPECT_EQ(character["count"].toInt(), 1);
    EXPECT_EQ(character["hips"].toString(), "mixamorig:Hips");
    EXPECT_EQ(character["pose"].toString(), "T-pose");
    EXPECT_EQ(character["up"].toArray(), (QJsonArray {0.0, 1.0, 0.0}));
    EXPECT_EQ(character["facing"].toArray(), (QJsonArray {0.0, 0.0, 1.0}));
    QStringList unmapped;
    for (const QJsonValue& bone : report["unmapped"].toArray())
        unmapped << bone.toObject()["bone"].toString() + " " + bone.toObject()["reason"].toString();
    EXPECT_TRUE(unmapped.contains("mixamorig:HeadTop_End end marker")) << qPrintable(unmapped.join(", "));
    EXPECT_EQ(unmapped.size(), 3);
}

TEST(CharacterizeCommand, PirouetteSkeletonWarnsAboutTheLeftArmAndMissesItsHead)
{
    const ProcessResult run = zelkin({"characterize", corpusSkeleton("poser_pirouette.bvh"), "--json"});
    EXPECT_EQ(run.status, 2) << run.err.constData();
    EXPECT_TRUE(run.err.isEmpty());
    const QJsonObject report = run.Json();
    EXPECT_EQ(report["state"].toInt(), 3);
    EXPECT_EQ(report["method"].toString(), "recognition");
    EXPECT_EQ(report["mappedNodes"].toInt(), 18);
    EXPECT_EQ(NodeNamed(report, "Neck")["bone"].toString(), "neck");
    EXPECT_TRUE(report["message"].toString().split('\n').contains("Missing required bones."));
    EXPECT_TRUE(NodeNamed(report, "Head").isEmpty());

    const QJsonObject arm = NodeNamed(report, "LeftArm");
    EXPECT_EQ(arm["bone"].toString(), "lshldr");
    EXPECT_EQ(arm["state"].toInt(), 2);
    const QJsonArray messages = arm["messages"].toArray();
    ASSERT_EQ(messages.size(), 1);
    EXPECT_EQ(messages[0].toString(), LeftArmWarning);
    const QRegularExpressionMatch angle =
        QRegularExpression("difference of ([0-9.]+) degrees").match(messages[0].toString());
    ASSERT_TRUE(angle.hasMatch());
    EXPECT_NEAR(angle.captured(1).toDouble(), PirouetteLeftArmAngle(), 1e-4);
}

TEST(CharacterizeCommand, ReportForPeopleGivesCharacterStateAndFindingsWithNodeAndBone)
{
    const ProcessResult pirouette = zelkin({"characterize", corpusSkeleton("poser_pirouette.bvh")});
    EXPECT_EQ(pirouette.status, 2);
    const QString text = QString::fromUtf8(pirouette.out);
    EXPECT_TRUE(QRegularExpression("^Automatic characterization: character 1 of 1, \"hip\" \\(hips \"hip\"\\), T-pose, "
                                   "up \\+Y, facing \\+Z: 18 nodes, confidence [0-9]+%.\nState: 3 \\(error\\)\n")
                    .match(text)
                    .hasMatch())
        << qPrintable(text);
    EXPECT_TRUE(text.contains("Message: Missing required bones.\n")) << qPrintable(text);
    EXPECT_TRUE(text.contains("  warning  LeftArm (lshldr): " + LeftArmWarning + "\n")) << qPrintable(text);

    const ProcessResult mixamo = zelkin({"characterize", corpusSkeleton("mixamo_xbot.glb")});
    EXPECT_EQ(mixamo.status, 0);
    EXPECT_TRUE(mixamo.out.contains("State: 1 (valid)\n"));
    EXPECT_TRUE(mixamo.out.contains("Findings: none\n"));
}

// What scripts/run.sh does with the sample skeleton.
TEST(CharacterizeCommand, SampleSkeletonIsValidAndItsStreamCanBeInspected)
{
    QTemporaryDir dir;
    const QString output = dir.filePath("sample_humanoid.zelc");
    const ProcessResult run = zelkin({"characterize", sampleSkeleton(), "-o", output, "--json"});
    ASSERT_EQ(run.status, 0) << run.err.constData();
    const QJsonObject report = run.Json();
    EXPECT_EQ(report["state"].toInt(), 1) << qPrintable(report["message"].toString());
    EXPECT_EQ(report["method"].toString(), "recognition");
    EXPECT_EQ(report["mappedNodes"].toInt(), 53);
    EXPECT_EQ(NodeNamed(report, "LeftHandThumb3")["bone"].toString(), "LeftHandThumb3");
    EXPECT_TRUE(readFile(dir.filePath("sample_humanoid.bones.xml")).contains("LeftHandPinky3"));

    const QJsonObject stream = zelkin({"inspect", output, "--json"}).Json();
    EXPECT_EQ(stream["byteOrder"].toString(), "little");
    EXPECT_EQ(stream["usedNodes"].toInt(), 53);
}

TEST(CharacterizeCommand, NamedTemplateAndPrefixAreHonoured)
{
    QTemporaryDir dir;
    const QString mixamo = corpusSkeleton("mixamo_xbot.glb");
    // The generic template fits the rig once the prefix is taken off the names.
    const QJsonObject prefixed =
        zelkin({"characterize", mixamo, "--template", "Zelkin", "--prefix", MixamoPrefix, "--json"}).Json();
    EXPECT_EQ(prefixed["method"].toString(), "template");
    EXPECT_EQ(prefixed["template"].toString(), "Zelkin");
    EXPECT_EQ(prefixed["mappedNodes"].toInt(), 62);

    // A template file that only knows the hips: one node, so the required bones are missing.
    const QString hipsOnly = writeFile(dir, "hips_only.xml",
                                       "<config_root><match_list><item key=\"Reference\" value=\"\"/>"
                                       "<item key=\"Hips\" value=\"Hips\"/></match_list></config_root>");
    const ProcessResult fromFile = zelkin({"characterize", mixamo, "--template", hipsOnly, "--json"});
    EXPECT_EQ(fromFile.status, 2);
    EXPECT_EQ(fromFile.Json()["template"].toString(), hipsOnly);
    EXPECT_EQ(fromFile.Json()["mappedNodes"].toInt(), 1);
    EXPECT_NEAR(fromFile.Json()["score"].toDouble(), 1.0 / 62.0, 1e-9);
}

TEST(CharacterizeCommand, WritesBigEndianStreamsAndXmlFiles)
{
    QTemporaryDir dir;
    const QString big = dir.filePath("big.zelc");
    ASSERT_EQ(zelkin({"characterize", sampleSkeleton(), "-o", big, "--big-endian"}).status, 0);
    EXPECT_EQ(zelkin({"inspect", big, "--json"}).Json()["byteOrder"].toString(), "big");

    const QString xml = dir.filePath("sample.xml");
    ASSERT_EQ(zelkin({"characterize", sampleSkeleton(), "-o", xml}).status, 0);
    EXPECT_TRUE(readFile(xml).contains("<bone_correspondance>"));
    EXPECT_FALSE(QFile::exists(dir.filePath("sample.bones.xml"))) << "the XML file names its own bones";

    // Findings do not stop the file from being written: the studio can open it and fix it.
    const QString pirouette = dir.filePath("pirouette.zelc");
    EXPECT_EQ(zelkin({"characterize", corpusSkeleton("poser_pirouette.bvh"), "-o", pirouette}).status, 2);
    EXPECT_TRUE(QFile::exists(pirouette));
    EXPECT_TRUE(readFile(dir.filePath("pirouette.bones.xml")).contains("lshldr"));
}

TEST(CharacterizeCommand, BadInputChangesNoFile)
{
    QTemporaryDir dir;
    const QString output = writeFile(dir, "existing.zelc", "previous contents");
    const QString bones = writeFile(dir, "existing.bones.xml", "previous bones");
    const QString sample = sampleSkeleton();
    const struct
    {
        QStringList arguments;
        const char* what;
    } cases[] = {
        {{dir.filePath("missing.bvh")}, "a missing file"},
        {{writeFile(dir, "noise.fbx", QByteArray(4096, '\x5a'))}, "a file Assimp cannot read"},
        {{writeFile(dir, "cut.bvh", "HIERARCHY\nROOT Hips\n{\n\tOFFSET 0 0")}, "a cut-off BVH file"},
        {{sample, "--template", "NoSuchTemplate"}, "an unknown template"},
        {{sample, "--prefix", "nobody:"}, "a prefix no bone has"},
        {{sample, "--match", "prefix"}, "an unknown match type"},
        {{sample, "--frobnicate"}, "an unknown option"},
    };
    for (const auto& c : cases)
    {
        ExpectOneLineFailure(zelkin(QStringList {"characterize"} + c.arguments + QStringList {"-o", output}), c.what);
        EXPECT_EQ(readFile(output), QByteArray("previous contents")) << c.what;
        EXPECT_EQ(readFile(bones), QByteArray("previous bones")) << c.what;
    }
    ExpectOneLineFailure(zelkin({"characterize", sample, "-o", dir.filePath("out.fbx")}), "wrong output");
    ExpectOneLineFailure(zelkin({"characterize", sample, "-o", dir.filePath("out.xml"), "--big-endian"}),
                         "big-endian XML");
    ExpectOneLineFailure(zelkin({"characterize", sample, "-o"}), "an option without its value");
    ExpectOneLineFailure(zelkin({"characterize", sample, "-o", dir.filePath("no/such/folder/x.zelc")}),
                         "an unwritable output");
    // The stream is not written when its bones file cannot be: a folder stands where the bones file would go.
    ASSERT_TRUE(QDir(dir.path()).mkdir("blocked.bones.xml"));
    ExpectOneLineFailure(zelkin({"characterize", sample, "-o", dir.filePath("blocked.zelc")}), "no bones file");
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 4) << "nothing was added beside the inputs";
}

TEST(ValidateCommand, StreamWithItsBonesFileValidatesLikeTheCharacterization)
{
    QTemporaryDir dir;
    const QString pirouette = dir.filePath("pirouette.zelc");
    ASSERT_EQ(zelkin({"characterize", corpusSkeleton("poser_pirouette.bvh"), "-o", pirouette}).status, 2);
    const ProcessResult run = zelkin({"validate", pirouette, "--json"});
    EXPECT_EQ(run.status, 2);
    const QJsonObject report = run.Json();
    EXPECT_TRUE(report["template"].isNull());
    EXPECT_EQ(report["mappedNodes"].toInt(), 18);
    EXPECT_EQ(NodeNamed(report, "LeftArm")["bone"].toString(), "lshldr");
    EXPECT_EQ(NodeNamed(report, "LeftArm")["messages"].toArray(), QJsonArray {LeftArmWarning});

    // Without the bones file the nodes stand in for the bones; the stored geometry still gives the same findings.
    QFile::remove(dir.filePath("pirouette.bones.xml"));
    const QJsonObject unnamed = zelkin({"validate", pirouette, "--json"}).Json();
    EXPECT_EQ(NodeNamed(unnamed, "LeftArm")["bone"].toString(), "LeftArm");
    EXPECT_EQ(NodeNamed(unnamed, "LeftArm")["messages"].toArray(), QJsonArray {LeftArmWarning});
}

TEST(ValidateCommand, SkeletonSuppliesTheCurrentGeometry)
{
    QTemporaryDir dir;
    const QString sample = dir.filePath("sample.xml");
    ASSERT_EQ(zelkin({"characterize", sampleSkeleton(), "-o", sample}).status, 0);
    EXPECT_EQ(zelkin({"validate", sample}).status, 0);

    // The same bone names over a skeleton whose left arm hangs 30 degrees down.
    QByteArray bvh = readFile(sampleSkeleton());
    const int arm = bvh.indexOf("JOINT LeftForeArm");
    ASSERT_GT(arm, 0);
    const int offset = bvh.indexOf("OFFSET", arm);
    const int end = bvh.indexOf('\n', offset);
    bvh.replace(offset, end - offset, "OFFSET 24.248711 -14 0");
    const QString drooping = writeFile(dir, "drooping.bvh", bvh);
    const QJsonObject report = zelkin({"validate", sample, "--skeleton", drooping, "--json"}).Json();
    EXPECT_EQ(report["state"].toInt(), 2);
    EXPECT_EQ(NodeNamed(report, "LeftArm")["state"].toInt(), 2);
    EXPECT_FALSE(report.contains("missingBones"));

    const QJsonObject elsewhere =
        zelkin({"validate", sample, "--skeleton", corpusSkeleton("poser_pirouette.bvh"), "--json"}).Json();
    EXPECT_EQ(elsewhere["missingBones"].toArray().size(), 53);
    EXPECT_EQ(elsewhere["state"].toInt(), 1) << "bones the skeleton lacks keep their stored geometry";
}

TEST(ValidateCommand, BadInputIsStatusOne)
{
    QTemporaryDir dir;
    const QString stream = dir.filePath("sample.zelc");
    ASSERT_EQ(zelkin({"characterize", sampleSkeleton(), "-o", stream}).status, 0);
    const QByteArray bytes = readFile(stream);
    ExpectOneLineFailure(zelkin({"validate", dir.filePath("missing.zelc")}), "a missing file");
    ExpectOneLineFailure(zelkin({"validate", writeFile(dir, "cut.zelc", bytes.chopped(1))}), "a truncated stream");
    ExpectOneLineFailure(zelkin({"validate", writeFile(dir, "page.xml", "<html/>")}), "XML of another kind");
    ExpectOneLineFailure(zelkin({"validate", stream, "--skeleton", dir.filePath("missing.bvh")}), "no skeleton");
    writeFile(dir, "sample.bones.xml", "<config_root><bone_correspondance><item value=\"x\"/></bone_correspondance>"
                                       "</config_root>");
    ExpectOneLineFailure(zelkin({"validate", stream}), "bone names of another characterization");
    writeFile(dir, "sample.bones.xml", "<config_root><unclosed>");
    ExpectOneLineFailure(zelkin({"validate", stream}), "a broken bones file");
}

TEST(TemplatesCommand, ListsShippedAndUserTemplates)
{
    QTemporaryDir home;
    const QString folder = home.filePath("Morvane/config/template");
    ASSERT_TRUE(QDir().mkpath(folder));
    QFile::copy(QStringLiteral(ZELKIN_SOURCE_DIR "/templates/Zelkin.xml"), folder + "/MyRig.xml");
    QFile broken(folder + "/Broken.xml");
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("<config_root><no_match_list/></config_root>");
    broken.close();

    const ProcessResult run = zelkin({"templates"}, home.path());
    ASSERT_EQ(run.status, 0) << run.err.constData();
    const QStringList lines = QString::fromUtf8(run.out).split('\n');
    const QStringList shipped = QDir(ZELKIN_SOURCE_DIR "/templates").entryList({"*.xml"}, QDir::Files);
    ASSERT_GE(shipped.size(), 10);
    for (const QString& file : shipped)
        EXPECT_TRUE(lines.contains("  " + QFileInfo(file).completeBaseName())) << qPrintable(file);
    EXPECT_TRUE(lines.contains("  MyRig"));
    EXPECT_TRUE(run.out.contains("  Broken (cannot be read")) << run.out.constData();

    // A user template is named like a shipped one.
    const QJsonObject mine =
        zelkin({"characterize", sampleSkeleton(), "--template", "MyRig", "--json"}, home.path()).Json();
    EXPECT_EQ(mine["template"].toString(), "MyRig");
    EXPECT_EQ(mine["mappedNodes"].toInt(), 53);
}
