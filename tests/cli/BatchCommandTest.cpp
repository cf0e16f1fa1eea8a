// The command line for pipelines: help and version, folders of skeletons read by workers, JSON Lines with a
// summary, and the skeleton as the tool reads it.
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>

#include <gtest/gtest.h>

#include "CliProcess.h"

namespace
{
// The corpus rigs and the sample, a skeleton cut short and a text file, in one folder.
QString MixedFolder(const QTemporaryDir& dir)
{
    const QString folder = dir.filePath("rigs");
    QDir().mkpath(folder + "/deeper");
    QFile::copy(corpusSkeleton("mixamo_xbot.glb"), folder + "/mixamo_xbot.glb");
    QFile::copy(corpusSkeleton("poser_pirouette.bvh"), folder + "/poser_pirouette.bvh");
    QFile::copy(sampleSkeleton(), folder + "/deeper/sample_humanoid.bvh");
    QFile::copy(sampleSkeleton(), folder + "/deeper/a_sample.bvh");
    QFile::copy(sampleSkeleton(), folder + "/deeper/z_sample.bvh");
    writeFile(dir, "rigs/damaged.glb", readFile(corpusSkeleton("mixamo_xbot.glb")).left(3000));
    writeFile(dir, "rigs/notes.txt", "not a skeleton\n");
    return folder;
}

QList<QJsonObject> Lines(const QByteArray& out)
{
    QList<QJsonObject> lines;
    for (const QByteArray& line : out.split('\n'))
    {
        if (line.isEmpty())
            continue;
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(line, &error);
        EXPECT_EQ(error.error, QJsonParseError::NoError) << line.constData();
        lines.append(document.object());
    }
    return lines;
}

QMap<QString, QByteArray> FilesIn(const QString& folder)
{
    QMap<QString, QByteArray> files;
    for (const QString& name : QDir(folder).entryList(QDir::Files))
        files.insert(name, readFile(folder + "/" + name));
    return files;
}
} // namespace

TEST(BatchCommand, EveryCommandHasHelpAndTheProgramItsVersion)
{
    const struct
    {
        const char* command;
        QStringList options;
    } commands[] = {{"characterize", {"--character", "--template", "--match", "--prefix", "--output", "--format",
                                      "--big-endian", "--recursive", "--jobs", "--timeout", "--json"}},
                    {"validate", {"--skeleton", "--recursive", "--jobs", "--timeout", "--json"}},
                    {"inspect", {"--json"}},
                    {"convert", {"--big-endian"}},
                    {"templates", {}},
                    {"bones", {"--json"}}};
    for (const auto& c : commands)
    {
        for (const char* help : {"--help", "-h"})
        {
            const ProcessResult run = zelkin({c.command, help});
            EXPECT_EQ(run.status, 0) << c.command << " " << help;
            EXPECT_TRUE(run.out.startsWith(QByteArray("usage: zelkin ") + c.command)) << run.out.constData();
            EXPECT_TRUE(run.err.isEmpty());
            for (const QString& option : c.options)
                EXPECT_TRUE(run.out.contains(option.toUtf8())) << c.command << " " << qPrintable(option);
            EXPECT_FALSE(run.out.contains("--worker")) << "the workers' own option is not for users";
        }
        const ProcessResult wrong = zelkin({c.command, "--no-such-option"});
        EXPECT_EQ(wrong.status, 1);
        EXPECT_EQ(wrong.err, QByteArray("zelkin: unknown option --no-such-option (see zelkin ") + c.command +
                                 " --help)\n");
    }
    const ProcessResult version = zelkin({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_TRUE(QRegularExpression("^zelkin 6\\.0\\.0 \\(Assimp [0-9]+\\.[0-9]+\\.[0-9]+, Qt 6\\.[0-9]+\\.[0-9]+\\)\n$")
                    .match(QString::fromUtf8(version.out))
                    .hasMatch())
        << version.out.constData();
    EXPECT_EQ(zelkin({"--help"}).status, 0);
    EXPECT_EQ(zelkin({"characterize", sampleSkeleton(), "-j", "none", "-o", "x"}).status, 1);
}

TEST(BatchCommand, AFolderIsReadByWorkersAndReportedLineByLine)
{
    QTemporaryDir dir;
    const QString folder = MixedFolder(dir);
    const QString out = dir.filePath("out");
    const ProcessResult run = zelkin({"characterize", folder, "--recursive", "-o", out, "--json", "-j", "2"});
    EXPECT_EQ(run.status, 1) << "a file could not be read: the worst status wins";
    EXPECT_TRUE(run.err.isEmpty()) << "no progress line when stderr is no terminal: " << run.err.constData();
    const QList<QJsonObject> lines = Lines(run.out);
    ASSERT_EQ(lines.size(), 7) << run.out.constData();
    // In name order, each with its file, the damaged one with its reason.
    const QStringList expected = {"damaged.glb", "deeper/a_sample.bvh", "deeper/sample_humanoid.bvh",
                                  "deeper/z_sample.bvh", "mixamo_xbot.glb", "poser_pirouette.bvh"};
    for (int i = 0; i < expected.size(); ++i)
        EXPECT_EQ(lines[i]["file"].toString(), folder + "/" + expected[i]);
    EXPECT_TRUE(lines[0]["error"].toString().startsWith("cannot read " + folder + "/damaged.glb"));
    EXPECT_EQ(lines[4]["method"].toString(), "recognition");
    EXPECT_EQ(lines[4]["mappedNodes"].toInt(), 62);
    EXPECT_EQ(lines[5]["state"].toInt(), 3);
    const QJsonObject summary = lines[6]["summary"].toObject();
    EXPECT_EQ(summary["files"].toInt(), 6);
    EXPECT_EQ(summary["valid"].toInt(), 4);
    EXPECT_EQ(summary["warnings"].toInt(), 0);
    EXPECT_EQ(summary["errors"].toInt(), 1);
    EXPECT_EQ(summary["unreadable"].toInt(), 1);
    EXPECT_EQ(summary["skipped"].toInt(), 1) << "the text file";
    EXPECT_TRUE(summary["seconds"].isDouble());

    // Every good skeleton written, named after itself.
    const QMap<QString, QByteArray> written = FilesIn(out);
    for (const char* name : {"mixamo_xbot", "poser_pirouette", "sample_humanoid", "a_sample", "z_sample"})
    {
        EXPECT_TRUE(written.contains(QString(name) + ".zelc")) << name;
        EXPECT_TRUE(written.contains(QString(name) + ".bones.xml")) << name;
    }
    EXPECT_EQ(written.size(), 10);

    // What was written validates as a batch too; without --recursive the folder's own files only.
    const ProcessResult validated = zelkin({"validate", out, "--json"});
    EXPECT_EQ(validated.status, 2) << "the pirouette has no head";
    const QList<QJsonObject> checked = Lines(validated.out);
    ASSERT_EQ(checked.size(), 6);
    EXPECT_EQ(checked[5]["summary"].toObject()["skipped"].toInt(), 5) << "the bones files are no characterizations";
    const ProcessResult shallow = zelkin({"characterize", folder, "--json"});
    EXPECT_EQ(Lines(shallow.out).last()["summary"].toObject()["files"].toInt(), 3);
}

TEST(BatchCommand, OneWorkerOrFourWriteTheSameFiles)
{
    QTemporaryDir dir;
    const QString folder = MixedFolder(dir);
    ASSERT_EQ(zelkin({"characterize", folder, "--recursive", "-o", dir.filePath("one"), "-j", "1"}).status, 1);
    ASSERT_EQ(zelkin({"characterize", folder, "--recursive", "-o", dir.filePath("four"), "-j", "4", "--format", "xml"})
                  .status,
              1);
    ASSERT_EQ(zelkin({"characterize", folder, "--recursive", "-o", dir.filePath("four-zelc"), "-j", "4"}).status, 1);
    EXPECT_EQ(FilesIn(dir.filePath("one")), FilesIn(dir.filePath("four-zelc")));
    EXPECT_EQ(FilesIn(dir.filePath("four")).size(), 5) << "one XML file each";
    // Text reports for people end with the same summary.
    const ProcessResult text = zelkin({"characterize", folder, "-j", "3"});
    EXPECT_TRUE(text.out.contains("== " + (folder + "/mixamo_xbot.glb").toUtf8() + "\nAutomatic characterization"));
    EXPECT_TRUE(QRegularExpression("\n3 files: 1 valid, 0 with warnings, 1 with errors, 1 unreadable; 1 skipped; "
                                   "[0-9.]+ s\n$")
                    .match(QString::fromUtf8(text.out))
                    .hasMatch())
        << text.out.constData();
    // A single file named -o as a folder, or an output file for many, is refused before anything is read.
    EXPECT_EQ(zelkin({"characterize", folder, "-o", dir.filePath("out.zelc")}).status, 1);
    EXPECT_FALSE(QFile::exists(dir.filePath("out.zelc")));
}

TEST(BatchCommand, BonesShowTheSkeletonAsTheToolReadsIt)
{
    const ProcessResult run = zelkin({"bones", corpusSkeleton("mixamo_xbot.glb"), "--json"});
    ASSERT_EQ(run.status, 0) << run.err.constData();
    const QJsonObject document = QJsonDocument::fromJson(run.out).object();
    const QJsonArray bones = document["bones"].toArray();
    ASSERT_EQ(bones.size(), 65);
    QStringList seen;
    for (const QJsonValue& value : bones)
    {
        const QJsonObject bone = value.toObject();
        // Parents come first.
        EXPECT_TRUE(bone["parent"].isNull() || seen.contains(bone["parent"].toString())) << qPrintable(bone["name"].toString());
        seen.append(bone["name"].toString());
        EXPECT_TRUE(bone["skinsMesh"].toBool());
        EXPECT_EQ(bone["position"].toArray().size(), 3);
    }
    EXPECT_EQ(bones[0].toObject()["node"].toString(), "Hips");
    EXPECT_GT(bones[0].toObject()["confidence"].toDouble(), 0.5);
    EXPECT_EQ(document["characters"].toArray().size(), 1);

    const QStringList lines = QString::fromUtf8(zelkin({"bones", corpusSkeleton("mixamo_xbot.glb")}).out).split('\n');
    EXPECT_TRUE(QRegularExpression("^mixamorig:Hips  \\(0\\.000, 1\\.043, 0\\.016\\)  skin  -> Hips [0-9]+%$")
                    .match(lines.first())
                    .hasMatch())
        << qPrintable(lines.first());
    // Indented under its parent, two spaces a level: the thumb is eight bones below the hips.
    EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [](const QString& line) {
        return line.startsWith(QString(16, ' ') + "mixamorig:LeftHandThumb1  (");
    }));
}
