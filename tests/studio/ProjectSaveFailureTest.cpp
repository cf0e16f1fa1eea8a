// Saving a project when the save cannot finish: into a folder that takes no file, onto a disk that fills up
// part-way, and with the studio killed in the middle of the write. The previous project stays byte for byte, the
// user is told once, and the changes still count as unsaved.
#include <csignal>

#include <unistd.h>

#include <QDir>
#include <QProcess>

#include "ModalAnswerer.h"
#include "SaveFailures.h"
#include "StudioFixture.h"

using namespace savefailure;

namespace
{

class FailingProjectSaves : public StudioFixture, public testing::WithParamInterface<Failure>
{
protected:
    void SetUp() override
    {
        StudioFixture::SetUp();
        ASSERT_TRUE(work.isValid());
        ASSERT_TRUE(OpenToOthers(work.path()) && QDir(work.path()).mkdir("projects"));
        ASSERT_TRUE(window->OpenSkeleton(Sample()));
        ASSERT_TRUE(window->SaveProject(Project()));
        ASSERT_FALSE(Session().IsModified());
    }

    QString Projects() const { return work.filePath("projects"); }
    QString Project() const { return work.filePath("projects/hero.zelproj"); }

    QTemporaryDir work;
};

TEST_P(FailingProjectSaves, KeepThePreviousProjectAndSaySoOnce)
{
    const Snapshot previous = Take(Projects());
    ASSERT_TRUE(window->RenameBone("LeftHand", "HandL"));
    ASSERT_TRUE(Session().IsModified());

    ModalAnswerer answerer(QMessageBox::Ok);
    bool saved = true;
    EXPECT_TRUE(SaveFailing(GetParam(), Projects(), 1024, [&] { saved = window->SaveProject(Project()); }));
    EXPECT_TRUE(KeptAsItWas(Projects(), previous, GetParam() == Failure::Killed));
    if (GetParam() != Failure::Killed)
    {
        EXPECT_FALSE(saved);
        EXPECT_EQ(answerer.titles, QStringList({"Save Project"}));
        EXPECT_TRUE(answerer.texts.value(0).contains(QDir::toNativeSeparators(Project())))
            << answerer.texts.value(0).toStdString();
        EXPECT_TRUE(Session().IsModified());
    }

    ASSERT_TRUE(window->SaveProject(Project()));
    EXPECT_FALSE(Session().IsModified());
    EXPECT_NE(Take(Projects()), previous) << "the failed save had something new to write";
}

INSTANTIATE_TEST_SUITE_P(Studio, FailingProjectSaves,
                         testing::Values(Failure::UnwritableFolder, Failure::FullDisk, Failure::Killed),
                         [](const testing::TestParamInfo<Failure>& info) { return std::string(NameOf(info.param)); });

// The picture of --screenshot replaces the previous one whole or not at all.
class FailingScreenshots : public testing::TestWithParam<Failure>
{
};

TEST_P(FailingScreenshots, KeepThePreviousPictureAndSaySo)
{
    QTemporaryDir work;
    QTemporaryDir configuration;
    ASSERT_TRUE(work.isValid() && configuration.isValid());
    ASSERT_TRUE(OpenToOthers(work.path()) && OpenToOthers(configuration.path()));
    const QString picture = work.filePath("shot.png");
    ASSERT_TRUE(WriteBytes(picture, "previous picture"));
    const Snapshot previous = Take(work.path());

    const Failure failure = GetParam();
    QProcess studio;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    studio.setProcessEnvironment(environment);
    studio.setChildProcessModifier([failure] {
        // The picture is far larger than the 16 KiB let through, the recent files list far smaller.
        if (!(failure == Failure::UnwritableFolder ? BecomeNobody() : LimitFileSize(16384, false)))
            _exit(125);
    });
    if (failure == Failure::UnwritableFolder)
        QFile::setPermissions(work.path(), QFileDevice::ReadOwner | QFileDevice::ExeOwner | QFileDevice::ReadOther |
                                               QFileDevice::ExeOther);
    studio.start(QStringLiteral(ZELKIN_STUDIO), {QStringLiteral(ZELKIN_SOURCE_DIR "/examples/sample_humanoid.bvh"),
                                                 "--screenshot", picture, "--config-dir", configuration.path()});
    ASSERT_TRUE(studio.waitForFinished(60000));
    OpenToOthers(work.path());

    EXPECT_EQ(studio.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(studio.exitCode(), 1);
    EXPECT_TRUE(studio.readAllStandardError().contains("zelkin-studio: cannot write " + QFile::encodeName(picture)));
    EXPECT_TRUE(KeptAsItWas(work.path(), previous, false));
}

INSTANTIATE_TEST_SUITE_P(Studio, FailingScreenshots, testing::Values(Failure::UnwritableFolder, Failure::FullDisk),
                         [](const testing::TestParamInfo<Failure>& info) { return std::string(NameOf(info.param)); });

} // namespace
