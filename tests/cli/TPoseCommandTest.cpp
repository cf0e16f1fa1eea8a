// zelkin characterize --t-pose: the rest pose put into a T-pose before validation, the bones it turned reported,
// and the files written carrying the new pose.
#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "CliProcess.h"

namespace
{
QString APose()
{
    return QStringLiteral(ZELKIN_SOURCE_DIR "/examples/sample_humanoid_apose.bvh");
}

// The same skeleton standing Z up: every offset turned a quarter round the X axis.
QString ZUpAPose(const QTemporaryDir& dir)
{
    QString text = QString::fromUtf8(readFile(APose()));
    const QRegularExpression offset(QStringLiteral("OFFSET (\\S+) (\\S+) (\\S+)"));
    QString turned;
    qsizetype from = 0;
    for (auto match = offset.globalMatch(text); match.hasNext();)
    {
        const QRegularExpressionMatch found = match.next();
        turned += text.mid(from, found.capturedStart() - from);
        turned += QStringLiteral("OFFSET %1 %2 %3")
                      .arg(found.captured(1))
                      .arg(-found.captured(3).toDouble())
                      .arg(found.captured(2));
        from = found.capturedEnd();
    }
    turned += text.mid(from);
    return writeFile(dir, "zup_apose.bvh", turned.toUtf8());
}

QJsonObject Turned(const QJsonObject& report, const QString& bone)
{
    for (const QJsonValue& turn : report["tPose"].toObject()["turned"].toArray())
    {
        if (turn.toObject()["bone"].toString() == bone)
            return turn.toObject();
    }
    return QJsonObject();
}

bool WarnsOfAnAxis(const QJsonObject& report)
{
    for (const QJsonValue& node : report["nodes"].toArray())
    {
        for (const QJsonValue& message : node.toObject()["messages"].toArray())
            if (message.toString().contains("axis"))
                return true;
    }
    return false;
}
} // namespace

TEST(TPoseCommand, AnAPoseIsValidatedAndWrittenAsATPose)
{
    QTemporaryDir dir;
    const QJsonObject plain = zelkin({"characterize", APose(), "--json"}).Json();
    EXPECT_TRUE(WarnsOfAnAxis(plain));
    EXPECT_FALSE(plain.contains("tPose"));

    const QString stream = dir.filePath("posed.zelc");
    const ProcessResult run = zelkin({"characterize", APose(), "--t-pose", "--json", "-o", stream});
    ASSERT_EQ(run.status, 0) << run.err.constData();
    const QJsonObject report = run.Json();
    EXPECT_EQ(report["state"].toInt(), 1) << qPrintable(report["message"].toString());
    EXPECT_FALSE(WarnsOfAnAxis(report));
    const QJsonObject tpose = report["tPose"].toObject();
    EXPECT_EQ(tpose["up"].toArray(), QJsonArray({0, 1, 0}));
    EXPECT_EQ(tpose["frameDegrees"].toDouble(), 0.0);
    EXPECT_NEAR(Turned(report, "LeftArm")["degrees"].toDouble(), 45.0, 0.1);
    EXPECT_EQ(Turned(report, "LeftArm")["node"].toString(), "LeftArm");
    // The forearm rides along with the upper arm; the curled fingers straighten.
    EXPECT_TRUE(Turned(report, "LeftForeArm").isEmpty());
    EXPECT_NEAR(Turned(report, "RightHandIndex1")["degrees"].toDouble(), 25.0, 1.0);

    // What was written holds the T-pose: validated on its own, it warns of nothing either.
    const QJsonObject stored = zelkin({"validate", stream, "--json"}).Json();
    EXPECT_EQ(stored["state"].toInt(), 1) << qPrintable(stored["message"].toString());
    const QString xml = dir.filePath("posed.xml");
    ASSERT_EQ(zelkin({"characterize", APose(), "--t-pose", "-o", xml}).status, 0);
    EXPECT_EQ(zelkin({"validate", xml, "--json"}).Json()["state"].toInt(), 1);
}

TEST(TPoseCommand, AZUpRigIsTurnedIntoTheSolversFrameAndSaysSo)
{
    QTemporaryDir dir;
    const QString zUp = ZUpAPose(dir);
    const QJsonObject report = zelkin({"characterize", zUp, "--t-pose", "--json"}).Json();
    EXPECT_EQ(report["state"].toInt(), 1) << qPrintable(report["message"].toString());
    const QJsonObject tpose = report["tPose"].toObject();
    EXPECT_EQ(tpose["up"].toArray(), QJsonArray({0, 0, 1}));
    EXPECT_EQ(tpose["facing"].toArray(), QJsonArray({0, -1, 0}));
    EXPECT_NEAR(tpose["frameDegrees"].toDouble(), 90.0, 1e-6);
    EXPECT_NEAR(Turned(report, "Hips")["degrees"].toDouble(), 90.0, 1e-6);

    const ProcessResult text = zelkin({"characterize", zUp, "--t-pose"});
    EXPECT_TRUE(text.out.contains("T-pose: the character stood up +Z, facing -Y, and was turned 90.0 degrees to stand "
                                  "up +Y, facing +Z;"))
        << text.out.constData();
    EXPECT_TRUE(text.out.contains("\n  LeftArm (LeftArm): 45.0 degrees\n")) << text.out.constData();

    // In a batch every worker poses its own skeleton.
    const QString folder = dir.filePath("batch");
    ASSERT_TRUE(QDir().mkpath(folder));
    QFile::copy(zUp, folder + "/a.bvh");
    QFile::copy(APose(), folder + "/b.bvh");
    const ProcessResult batch = zelkin({"characterize", folder, "--t-pose", "--json", "-j", "2"});
    EXPECT_EQ(batch.status, 0) << batch.err.constData();
    EXPECT_EQ(batch.out.count("\"tPose\""), 2) << batch.out.constData();
    EXPECT_FALSE(batch.out.contains("axis")) << batch.out.constData();
}

TEST(TPoseCommand, NothingMappedIsReportedNotPosed)
{
    QTemporaryDir dir;
    const QString none = writeFile(dir, "none.xml",
                                   "<config_root><match_list><item key=\"Hips\" value=\"Pelvis\"/></match_list>"
                                   "</config_root>");
    const QJsonObject report = zelkin({"characterize", APose(), "--template", none, "--t-pose", "--json"}).Json();
    EXPECT_TRUE(report["tPose"].toObject()["error"].toString().startsWith("No bone is mapped"))
        << qPrintable(report["tPose"].toObject()["error"].toString());
    const ProcessResult text = zelkin({"characterize", APose(), "--template", none, "--t-pose"});
    EXPECT_TRUE(text.out.contains("T-pose: not set: No bone is mapped")) << text.out.constData();
}
