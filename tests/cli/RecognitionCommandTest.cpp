// Automatic characterization through the zelkin program: several characters in one file, picking one, and the
// templates taking over where no humanoid is found.
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "CliProcess.h"
#include "TwoCharacterBvh.h"

namespace
{
QString TwoCharacters(const QTemporaryDir& dir)
{
    return writeFile(dir, "pair.bvh", TwoCharacterBvh());
}

QList<QJsonObject> JsonLines(const QByteArray& out)
{
    QList<QJsonObject> lines;
    for (const QByteArray& line : out.split('\n'))
        if (!line.isEmpty())
            lines.append(QJsonDocument::fromJson(line).object());
    return lines;
}
} // namespace

TEST(RecognitionCommand, SeveralCharactersEachGetTheirOwnCharacterizationAndFiles)
{
    QTemporaryDir dir;
    const QString pair = TwoCharacters(dir);
    const ProcessResult run = zelkin({"characterize", pair, "-o", dir.filePath("out.zelc"), "--json"});
    ASSERT_EQ(run.status, 0) << run.err.constData();
    const QList<QJsonObject> reports = JsonLines(run.out);
    ASSERT_EQ(reports.size(), 2) << run.out.constData();
    for (int i = 0; i < 2; ++i)
    {
        const QJsonObject character = reports[i]["character"].toObject();
        const QString prefix = i == 0 ? "A_" : "B_";
        EXPECT_EQ(character["index"].toInt(), i + 1);
        EXPECT_EQ(character["count"].toInt(), 2);
        EXPECT_EQ(character["root"].toString(), prefix + "Hips");
        EXPECT_EQ(reports[i]["state"].toInt(), 1) << qPrintable(reports[i]["message"].toString());
        EXPECT_EQ(reports[i]["mappedNodes"].toInt(), 53);
        for (const QJsonValue& node : reports[i]["nodes"].toArray())
            EXPECT_TRUE(node.toObject()["bone"].toString().startsWith(prefix));
        EXPECT_TRUE(QFile::exists(dir.filePath("out." + prefix + "Hips.zelc")));
        EXPECT_TRUE(readFile(dir.filePath("out." + prefix + "Hips.bones.xml")).contains((prefix + "LeftHand").toUtf8()));
    }
    EXPECT_FALSE(QFile::exists(dir.filePath("out.zelc")));

    const ProcessResult text = zelkin({"characterize", pair});
    EXPECT_EQ(text.status, 0);
    EXPECT_TRUE(text.out.contains("character 1 of 2, \"A_Hips\"")) << text.out.constData();
    EXPECT_TRUE(text.out.contains("\n\nAutomatic characterization: character 2 of 2, \"B_Hips\"")) << text.out.constData();
}

TEST(RecognitionCommand, OneCharacterPickedByIndexOrBone)
{
    QTemporaryDir dir;
    const QString pair = TwoCharacters(dir);
    const QJsonObject second = zelkin({"characterize", pair, "--character", "2", "--json"}).Json();
    EXPECT_EQ(second["character"].toObject()["root"].toString(), "B_Hips");
    const QJsonObject first = zelkin({"characterize", pair, "--character", "A_Hips", "--json"}).Json();
    EXPECT_EQ(first["character"].toObject()["index"].toInt(), 1);

    const QString output = dir.filePath("one.zelc");
    const ProcessResult unknown = zelkin({"characterize", pair, "--character", "3", "-o", output});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_EQ(unknown.err, "zelkin: no character \"3\" in the skeleton (it has 2: \"A_Hips\", \"B_Hips\")\n");
    EXPECT_FALSE(QFile::exists(output));
    EXPECT_EQ(zelkin({"characterize", pair, "--character", "1", "--template", "Zelkin"}).status, 1);
}

TEST(RecognitionCommand, TemplatesTakeOverWhereNoHumanoidIsFound)
{
    // Every joint at one point: no shape to recognize, but names a template knows.
    QTemporaryDir dir;
    const QString flat = QString::fromUtf8(readFile(sampleSkeleton()))
                             .replace(QRegularExpression("OFFSET [^\n]*"), "OFFSET 0 0 0");
    const QJsonObject report = zelkin({"characterize", writeFile(dir, "flat.bvh", flat.toUtf8()), "--json"}).Json();
    EXPECT_EQ(report["method"].toString(), "template");
    EXPECT_FALSE(report["template"].toString().isEmpty());
    EXPECT_EQ(report["mappedNodes"].toInt(), 53);
    EXPECT_FALSE(report.contains("character"));
    EXPECT_EQ(report["note"].toString(), "No humanoid found among the skeleton's 53 bone(s).");
}
