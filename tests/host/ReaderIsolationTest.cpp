// What a hostile file can do to the reader process, played by a reader that misbehaves on request: each ends in
// one message, the scene as it was, and this process going on.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include "Scene.h"
#include "SceneImporter.h"

namespace
{
const QString kSample = QStringLiteral(ZELKIN_SOURCE_DIR "/examples/sample_humanoid.bvh");

class ReaderIsolationTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(importer.Import(kSample, scene)) << importer.ErrorText().toStdString();
        qputenv("ZELKIN_READER", FAKE_READER);
    }
    void TearDown() override { qunsetenv("ZELKIN_READER"); }

    // The message's reason, after checking everything else a failure promises.
    std::string Refusal(const char* mode)
    {
        const QString path = dir.filePath(QString::fromLatin1(mode) + ".fbx");
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        file.write(mode);
        file.close();
        if (importer.Import(path, scene))
            return "read";
        EXPECT_EQ(scene.BoneCount(), 53);
        EXPECT_EQ(scene.SourcePath(), kSample);
        const QString prefix = "cannot read " + path + ": ";
        EXPECT_TRUE(importer.ErrorText().startsWith(prefix)) << importer.ErrorText().toStdString();
        EXPECT_FALSE(importer.ErrorText().contains('\n'));
        return importer.ErrorText().mid(prefix.size()).toStdString();
    }

    QTemporaryDir dir;
    SceneImporter importer;
    Scene scene;
};

TEST_F(ReaderIsolationTest, ACrashOrAnAnswerCutShortIsACrash)
{
    EXPECT_EQ(Refusal("crash"), "the reader stopped on this file (crashed)");
    EXPECT_EQ(Refusal("half"), "the reader stopped on this file (crashed)");
}

TEST_F(ReaderIsolationTest, WordsInsteadOfAnAnswerOrAFloodOfBytesAreStopped)
{
    EXPECT_EQ(Refusal("babble"), "the reader stopped on this file (its answer made no sense)");
    EXPECT_EQ(Refusal("flood"), "the reader stopped on this file (its answer passed 256 MB)");
    // The reader's own reason reaches the user, on one line.
    EXPECT_EQ(Refusal("reason"), "a reason over two lines");
}

// A host's progress dialog runs the event loop while the reader works; the reader's end handled there must not
// lose what it said last.
TEST_F(ReaderIsolationTest, AnAnswerThatArrivesWhileTheHostRunsItsEventLoopIsRead)
{
    importer.SetProgressCallback([](int) {
        QThread::msleep(300);
        QCoreApplication::processEvents();
        return true;
    });
    EXPECT_EQ(Refusal("late"), "a late reason");
}

TEST_F(ReaderIsolationTest, AHungReaderIsStoppedAtTheTimeLimitOrWhenTheUserCancels)
{
    importer.SetTimeLimit(1);
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(Refusal("hang"), "the reader stopped on this file (took longer than 1 s)");
    EXPECT_LT(clock.elapsed(), 10000);

    // The reader says nothing after its first step, yet the user is asked again and again.
    importer.SetTimeLimit(0);
    int asked = 0;
    importer.SetProgressCallback([&asked](int percent) { return percent < 10 || ++asked < 5; });
    EXPECT_EQ(Refusal("hang"), "import cancelled");
    EXPECT_TRUE(importer.WasCancelled());
    EXPECT_EQ(asked, 5);
}

#ifndef ZELKIN_UNDER_ASAN // a sanitized reader runs without the limit: its shadow memory would not fit
TEST_F(ReaderIsolationTest, TheReaderCannotTakeAllTheMemory)
{
    EXPECT_EQ(Refusal("memory"), "the reader stopped on this file (crashed)");
}
#endif

TEST_F(ReaderIsolationTest, AMissingReaderIsSaid)
{
    qputenv("ZELKIN_READER", QFile::encodeName(dir.filePath("nowhere")));
    EXPECT_EQ(Refusal("crash"), "the skeleton reader (zelkin-reader) is missing or does not start");
    EXPECT_EQ(SceneImporter::ReaderVersion(), "no skeleton reader found");
}
} // namespace
