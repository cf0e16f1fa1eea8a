// The zelkin program run as a user runs it: exit status, one line on stderr, files left alone on failure.
#include <cstdlib>
#include <cstring>

#include <QByteArray>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <zelkin/CharacterJointGeometry.h>
#include <zelkin/ZELSolver.h>

namespace
{
struct ProcessResult
{
    int status = -1;
    QByteArray out;
    QByteArray err;
};

ProcessResult zelkin(const QStringList& arguments)
{
    QProcess process;
    process.start(QStringLiteral(ZELKIN_CLI), arguments);
    process.waitForFinished(30000);
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAllStandardOutput(),
            process.readAllStandardError()};
}

// Hips and a fully defined left knee with a limit, the right-arm limb flag on.
QByteArray sampleStream(bool bigEndian)
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
    const int32_t limbs[4] = {0, 0, 0, 1};
    ZELCharacter* character = ZELCharacterCreate(&definition, std::malloc);
    ZELCharacterSetJointGeometries(&definition, character, records, ZELNodeCount, limbs);
    int32_t length = 0;
    void* bytes = ZELCharacterizationStreamWrite(&length, &definition, character, bigEndian, std::malloc, std::free);
    ZELCharacterDestroy(character, std::free);
    QByteArray stream(static_cast<const char*>(bytes), length);
    std::free(bytes);
    return stream;
}

QString writeFile(const QTemporaryDir& dir, const QString& name, const QByteArray& bytes)
{
    const QString path = dir.filePath(name);
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
    return path;
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
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
