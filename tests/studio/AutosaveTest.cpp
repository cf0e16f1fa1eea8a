// Work in the studio survives the studio: a studio killed mid-work leaves a copy that the next start offers back,
// exactly as it was; a studio that closes properly leaves nothing to offer.
#include <csignal>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/Characterization.h>
#include <zelkin/CharacterTool.h>
#include <zelkin/CharacterizationModel.h>

#include "Autosave.h"
#include "MainWindow.h"
#include "ModalAnswerer.h"
#include "StudioPreferences.h"

namespace
{
const QString kSample = QStringLiteral(ZELKIN_SOURCE_DIR "/examples/sample_humanoid.bvh");

// Everything a project keeps, in a form to compare.
struct Work
{
    QStringList bones;
    QList<QStringList> mappings;
    QStringList names;
    QList<bool> locks;
    int current = -1;
    int edits = 0;
    QString project;

    explicit Work(MainWindow& window)
    {
        StudioSession& session = window.GetSession();
        bones = session.GetScene().BoneNames();
        const CharacterizationModel& model = *window.GetTool()->GetModel();
        for (const auto& characterization : model.GetCharacterizations())
        {
            mappings.append(characterization->GetBoneNames());
            names.append(characterization->GetName());
            locks.append(characterization->IsLocked());
        }
        current = model.GetCurrentIndex();
        edits = int(session.GetEdits().size());
        project = session.GetProjectPath();
    }

    bool operator==(const Work& other) const
    {
        return bones == other.bones && mappings == other.mappings && names == other.names && locks == other.locks &&
               current == other.current && edits == other.edits && project == other.project;
    }
};

// A few minutes of a user's work: bone edits, mapping changes, a second characterization, a lock.
void DoWork(MainWindow& window)
{
    StudioSession& session = window.GetSession();
    CharacterizationModel& model = *window.GetTool()->GetModel();
    ASSERT_TRUE(session.RenameBone("LeftHand", "hand_L"));
    ASSERT_TRUE(session.DeleteBone("RightToeBase"));
    model.CreateCharacterization(QStringLiteral("Stand-in"));
    ASSERT_TRUE(model.AssignBone(BoneCatalogue::NodeId("Hips"), "Hips"));
    ASSERT_TRUE(model.SetCurrentCharacterization(0));
    ASSERT_TRUE(model.ClearNode(BoneCatalogue::NodeId("RightHandPinky3")));
    session.GetHub().Lock(true);
    ASSERT_TRUE(model.IsLocked());
}

// The studio a user was working in when it was killed: nothing of its own gets to run after the kill.
void WorkThenGetKilled(const QString& configuration, const QString& project)
{
    MainWindow window(configuration);
    window.show();
    if (!project.isEmpty())
    {
        if (!window.OpenSkeleton(kSample) || !window.SaveProject(project))
            std::_Exit(3);
    }
    else if (!window.OpenSkeleton(kSample))
        std::_Exit(3);
    DoWork(window);
    QString error;
    if (!window.GetAutosave().SaveNow(error))
        std::_Exit(4);
    std::raise(SIGKILL);
}

class AutosaveTest : public testing::Test
{
protected:
    // The killed studio runs in a fresh copy of this program, which makes a folder of its own before it gets to the
    // test's steps: the parent's folder reaches it through the environment.
    void SetUp() override
    {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        if (!qEnvironmentVariableIsSet(kFolder))
            qputenv(kFolder, QFile::encodeName(configuration.path()));
        folder = qEnvironmentVariable(kFolder);
    }
    void TearDown() override { qunsetenv(kFolder); }

    // The work a studio that was not killed holds after the same steps.
    Work Expected(const QString& project)
    {
        QTemporaryDir other;
        MainWindow window(other.path());
        EXPECT_TRUE(window.OpenSkeleton(kSample));
        if (!project.isEmpty())
        {
            EXPECT_TRUE(window.SaveProject(QDir(other.path()).filePath("scratch.zelproj")));
        }
        DoWork(window);
        Work work(window);
        work.project = project.isEmpty() ? QString() : QFileInfo(project).absoluteFilePath();
        return work;
    }

    static constexpr const char* kFolder = "ZELKIN_AUTOSAVE_TEST_FOLDER";
    QTemporaryDir configuration;
    QString folder;
};

TEST_F(AutosaveTest, AKilledStudiosUnsavedWorkIsOfferedAtTheNextStartAndRestoredExactly)
{
    EXPECT_EXIT(WorkThenGetKilled(folder, QString()), testing::KilledBySignal(SIGKILL), "");

    MainWindow window(folder);
    window.show();
    {
        ModalAnswerer answer(QStringLiteral("Restore"));
        ASSERT_TRUE(window.OfferRestore());
        ASSERT_EQ(answer.Count(), 1);
        EXPECT_EQ(answer.titles.front(), "Restore Work");
        EXPECT_TRUE(answer.texts.front().contains("unsaved work")) << answer.texts.front().toStdString();
    }
    EXPECT_TRUE(Work(window) == Expected(QString()));
    EXPECT_TRUE(window.GetSession().IsModified());
    EXPECT_TRUE(window.isWindowModified());
    // Offered once: the copy now belongs to this studio.
    MainWindow another(folder);
    EXPECT_FALSE(another.OfferRestore());
}

TEST_F(AutosaveTest, RestoredChangesToAProjectBelongToThatProjectAndAreNotSavedYet)
{
    const QString project = QDir(folder).filePath("work.zelproj");
    EXPECT_EXIT(WorkThenGetKilled(folder, project), testing::KilledBySignal(SIGKILL), "");

    MainWindow window(folder);
    {
        // Not now keeps the copy for another start; Discard drops it.
        ModalAnswerer later(QStringLiteral("Not Now"));
        EXPECT_FALSE(window.OfferRestore());
        EXPECT_TRUE(later.texts.front().contains("changes to work.zelproj")) << later.texts.front().toStdString();
    }
    {
        ModalAnswerer answer(QStringLiteral("Restore"));
        ASSERT_TRUE(window.OfferRestore());
    }
    EXPECT_TRUE(Work(window) == Expected(project));
    EXPECT_TRUE(window.GetSession().IsModified());
    // Saving puts the restored work where it belongs.
    ASSERT_TRUE(window.OnSaveProject());
    MainWindow reopened(folder);
    ASSERT_TRUE(reopened.OpenProject(project));
    EXPECT_TRUE(Work(reopened) == Work(window));
}

TEST_F(AutosaveTest, AStudioThatClosesOrHoldsNothingToLoseLeavesNothingToOffer)
{
    {
        MainWindow window(folder);
        ASSERT_TRUE(window.OpenSkeleton(kSample));
        QString error;
        // A skeleton just opened is not work: opening it again gives the same.
        ASSERT_TRUE(window.GetAutosave().SaveNow(error));
        EXPECT_TRUE(QDir(folder + "/autosave").entryList({"*.zelproj"}).isEmpty());
        DoWork(window);
        ASSERT_TRUE(window.GetAutosave().SaveNow(error)) << error.toStdString();
        EXPECT_EQ(QDir(folder + "/autosave").entryList({"*.zelproj"}).size(), 1);
        // A studio still running keeps its copy to itself.
        MainWindow second(folder);
        EXPECT_FALSE(second.OfferRestore());
        ModalAnswerer discard(QMessageBox::Discard);
        window.close();
    }
    EXPECT_TRUE(QDir(folder + "/autosave").entryList(QDir::Files).isEmpty());
    MainWindow window(folder);
    EXPECT_FALSE(window.OfferRestore());
}

TEST_F(AutosaveTest, PreferencesHoldAcrossStartsAndNonsenseReadsAsTheDefaults)
{
    {
        MainWindow window(folder);
        EXPECT_EQ(window.GetPreferences().ReadingTimeLimit(), SceneImporter::DefaultTimeLimit);
        EXPECT_EQ(window.GetPreferences().AutosaveMinutes(), StudioPreferences::DefaultAutosaveMinutes);
        window.ApplyPreferences(0, 10);
    }
    const QString file = folder + "/config/zelkin_studio.ini";
    EXPECT_EQ(StudioPreferences(file).ReadingTimeLimit(), 0);
    EXPECT_EQ(StudioPreferences(file).AutosaveMinutes(), 10);
    {
        QFile broken(file);
        ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
        broken.write("[import]\nreadingTimeLimitSeconds=-5\n[autosave]\nintervalMinutes=lots\n");
    }
    EXPECT_EQ(StudioPreferences(file).ReadingTimeLimit(), SceneImporter::DefaultTimeLimit);
    EXPECT_EQ(StudioPreferences(file).AutosaveMinutes(), StudioPreferences::DefaultAutosaveMinutes);
}
} // namespace
