// Outputs of the zelkin program whose writing fails: into a folder that takes no file, onto a disk that fills up
// part-way, and with the program killed in the middle of a write. The previous files stay byte for byte, and a
// failure is one line on stderr with status 1.
#include <csignal>
#include <functional>

#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "CliProcess.h"
#include "SaveFailures.h"

using namespace savefailure;

namespace
{
// Long enough that a stream's bones file outweighs the stream, so a size limit can let the stream through and stop
// its companion.
const QString LongPrefix = QStringLiteral("studio_take_0042_hero_character_rig_with_a_long_descriptive_namespace:");

struct Outcome
{
    ProcessResult result;
    int signal = 0; // the one that ended the program, 0 when it exited
};

// Runs zelkin with `prepare` called in the child just before the program starts.
Outcome RunPrepared(const QStringList& arguments, const QString& configHome, const std::function<void()>& prepare)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("APPDATA"));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), configHome);
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setChildProcessModifier(prepare);
    process.start(QStringLiteral(ZELKIN_CLI), arguments);
    if (!process.waitForFinished(60000))
    {
        process.kill();
        process.waitForFinished();
        return {};
    }
    const bool crashed = process.exitStatus() == QProcess::CrashExit;
    return {{crashed ? -1 : process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()},
            crashed ? process.exitCode() : 0};
}

struct Output
{
    const char* name;
    const char* file;
    bool withBones;
    // The command writing `target`; `inputs` holds the long-named skeleton and its characterization.
    QStringList (*command)(const QString& inputs, const QString& target);
};

class FailingOutputs : public testing::TestWithParam<std::tuple<Output, Failure>>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(work.isValid());
        ASSERT_TRUE(OpenToOthers(work.path()));
        const QDir root(work.path());
        ASSERT_TRUE(root.mkpath("inputs") && root.mkpath("outputs") && root.mkpath("probe") && root.mkpath("config"));
        ASSERT_TRUE(OpenToOthers(Folder("config")));
        QByteArray skeleton = ReadBytes(sampleSkeleton());
        skeleton.replace("ROOT ", "ROOT " + LongPrefix.toLatin1()).replace("JOINT ", "JOINT " + LongPrefix.toLatin1());
        ASSERT_TRUE(WriteBytes(Folder("inputs") + "/hero.bvh", skeleton));
        ASSERT_EQ(Zelkin({"characterize", Folder("inputs") + "/hero.bvh", "--prefix", LongPrefix, "-o",
                          Folder("inputs") + "/hero.xml"})
                      .result.status,
                  0);
    }

    QString Folder(const char* name) const { return work.filePath(QLatin1String(name)); }
    const Output& GetOutput() const { return std::get<0>(GetParam()); }
    QStringList Command(const char* folder) const { return GetOutput().command(Folder("inputs"), Target(folder)); }
    QString Target(const char* folder) const { return Folder(folder) + "/" + GetOutput().file; }

    QStringList Written(const char* folder) const
    {
        QStringList files = {Target(folder)};
        if (GetOutput().withBones)
            files.append(Folder(folder) + "/hero.bones.xml");
        return files;
    }

    Outcome Zelkin(const QStringList& arguments, const std::function<void()>& prepare = [] {}) const
    {
        return RunPrepared(arguments, Folder("config"), prepare);
    }

    // Lets the first file through whole and stops the second part-way; a single file is stopped half-way.
    rlim_t LimitWithinTheSave()
    {
        EXPECT_EQ(Zelkin(Command("probe")).result.status, 0);
        const QStringList probe = Written("probe");
        const qint64 first = QFileInfo(probe[0]).size();
        if (probe.size() == 1)
            return static_cast<rlim_t>(first / 2);
        EXPECT_GT(QFileInfo(probe[1]).size(), first) << "the bones file must be the larger one";
        return static_cast<rlim_t>(first);
    }

    QTemporaryDir work;
};

TEST_P(FailingOutputs, KeepThePreviousFilesAndSayWhyOnOneLine)
{
    Snapshot previous;
    for (const QString& file : Written("outputs"))
    {
        ASSERT_TRUE(WriteBytes(file, "previous " + QFileInfo(file).fileName().toUtf8()));
        previous.insert(QFileInfo(file).fileName(), ReadBytes(file));
    }
    const QString outputs = Folder("outputs");
    const QStringList arguments = Command("outputs");

    Outcome run;
    const Failure failure = std::get<1>(GetParam());
    if (failure == Failure::UnwritableFolder)
    {
        ASSERT_TRUE(QFile::setPermissions(outputs, QFileDevice::ReadOwner | QFileDevice::ExeOwner |
                                                       QFileDevice::ReadOther | QFileDevice::ExeOther));
        run = Zelkin(arguments, [] {
            if (!BecomeNobody())
                _exit(125);
        });
        OpenToOthers(outputs);
    }
    else
    {
        const rlim_t limit = LimitWithinTheSave();
        run = Zelkin(arguments, [limit, failure] {
            if (!LimitFileSize(limit, failure == Failure::Killed))
                _exit(125);
        });
    }

    EXPECT_TRUE(KeptAsItWas(outputs, previous, failure == Failure::Killed));
    if (failure == Failure::Killed)
        EXPECT_EQ(run.signal, SIGXFSZ) << run.result.err.constData();
    else
    {
        EXPECT_EQ(run.result.status, 1) << run.result.err.constData();
        EXPECT_EQ(run.result.err.count('\n'), 1) << run.result.err.constData();
        EXPECT_TRUE(run.result.err.startsWith("zelkin: ")) << run.result.err.constData();
        EXPECT_TRUE(run.result.err.contains(QFile::encodeName(outputs))) << run.result.err.constData();
        EXPECT_TRUE(run.result.out.isEmpty());
    }

    // Once the trouble is gone the same command replaces them.
    EXPECT_EQ(Zelkin(arguments).result.status, 0);
    for (const QString& name : previous.keys())
        EXPECT_NE(ReadBytes(QDir(outputs).filePath(name)), previous[name]) << name.toStdString();
}

QStringList CharacterizeInto(const QString& inputs, const QString& target)
{
    return {"characterize", inputs + "/hero.bvh", "--prefix", LongPrefix, "-o", target};
}

INSTANTIATE_TEST_SUITE_P(
    Cli, FailingOutputs,
    testing::Combine(
        testing::Values(Output {"CharacterizeStream", "hero.zelc", true, CharacterizeInto},
                        Output {"CharacterizeXml", "hero.xml", false, CharacterizeInto},
                        Output {"ConvertToBigEndian", "hero.zelc", true,
                                [](const QString& inputs, const QString& target) {
                                    return QStringList {"convert", inputs + "/hero.xml", target, "--big-endian"};
                                }}),
        testing::Values(Failure::UnwritableFolder, Failure::FullDisk, Failure::Killed)),
    [](const testing::TestParamInfo<std::tuple<Output, Failure>>& info) {
        return std::string(std::get<0>(info.param).name) + "_" + NameOf(std::get<1>(info.param));
    });

} // namespace
