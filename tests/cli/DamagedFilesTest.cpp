// Damaged skeleton files of every format Zelkin is tried on: zelkin never dies or hangs on one, and a file it
// cannot read costs exactly one line on stderr and exit status 1, alone or in a batch. Among them is a PLY file cut
// short on which Assimp loops for ever: the reading time limit is short here to keep the test quick.
#include <map>

#include <QJsonDocument>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "CliProcess.h"
#include "DamagedFiles.h"

namespace
{
TEST(DamagedFilesTest, EveryDamagedFileEndsInAReportOrInOneLineAndStatusOne)
{
    QTemporaryDir folder;
    const std::vector<DamagedFile> files = WriteDamagedFiles(QStringLiteral(ZELKIN_SCENE_FILES), folder.path(), 3);
    std::map<QString, int> refusedByFormat;
    for (const DamagedFile& file : files)
    {
        refusedByFormat.emplace(file.format, 0);
        const ProcessResult run = zelkin({"characterize", file.path, "--timeout", "5"});
        ASSERT_NE(run.status, -1) << "zelkin crashed or hung on " << file.path.toStdString();
        if (run.status != 1)
        {
            // Damage that leaves a readable skeleton gives a report like any other file.
            EXPECT_TRUE(run.status == 0 || run.status == 2) << file.path.toStdString();
            EXPECT_FALSE(run.out.isEmpty()) << file.path.toStdString();
            continue;
        }
        ++refusedByFormat[file.format];
        EXPECT_TRUE(run.out.isEmpty()) << file.path.toStdString();
        EXPECT_TRUE(run.err.startsWith("zelkin: cannot read " + file.path.toUtf8() + ": ")) << run.err.toStdString();
        EXPECT_EQ(run.err.count('\n'), 1) << run.err.toStdString();
    }
    EXPECT_GE(refusedByFormat.size(), 10u);
    // Every format meets damage it cannot read; otherwise the test would not be testing much of it.
    for (const auto& [format, refused] : refusedByFormat)
        EXPECT_GT(refused, 0) << format.toStdString();
}

TEST(DamagedFilesTest, ABatchOfDamagedFilesReportsEveryOneAndGoesOn)
{
    QTemporaryDir folder;
    const std::vector<DamagedFile> files = WriteDamagedFiles(QStringLiteral(ZELKIN_SCENE_FILES), folder.path(), 2);
    const ProcessResult run = zelkin({"characterize", folder.path(), "-j", "4", "--json", "--timeout", "5"});
    ASSERT_EQ(run.status, 1) << run.err.toStdString();
    const QList<QByteArray> lines = run.out.trimmed().split('\n');
    ASSERT_FALSE(lines.isEmpty());
    const QJsonObject summary = QJsonDocument::fromJson(lines.last()).object().value("summary").toObject();
    EXPECT_EQ(summary.value("files").toInt(), int(files.size())) << lines.last().toStdString();
    EXPECT_GT(summary.value("unreadable").toInt(), 0);
}
} // namespace
