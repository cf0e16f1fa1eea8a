// Damaged skeleton files of every format opened in the studio: each either opens or is refused with one message,
// and the studio goes on with the work it held. Among them is a file on which Assimp loops for ever: the reading
// time limit is short here to keep the test quick.
#include <QTemporaryDir>

#include "DamagedFiles.h"
#include "ModalAnswerer.h"
#include "StudioFixture.h"
#include "StudioPreferences.h"

namespace
{
class StudioDamagedFilesTest : public StudioFixture
{
};

TEST_F(StudioDamagedFilesTest, EveryDamagedFileOpensOrIsRefusedOnceAndTheWorkStays)
{
    window->ApplyPreferences(5, StudioPreferences::DefaultAutosaveMinutes);
    QTemporaryDir folder;
    const std::vector<DamagedFile> files = WriteDamagedFiles(QStringLiteral(ZELKIN_SCENE_FILES), folder.path(), 2);
    ASSERT_GE(files.size(), 20u);
    int refused = 0;
    for (const DamagedFile& file : files)
    {
        // Work worth keeping: the sample with an edit not saved anywhere (the last refusal left one behind).
        {
            ModalAnswerer discard(QMessageBox::Discard);
            ASSERT_TRUE(window->OpenSkeleton(Sample()));
        }
        ASSERT_TRUE(Session().RenameBone("Head", "Skull"));
        const QStringList bones = GetScene().BoneNames();
        ModalAnswerer answerer(QMessageBox::Discard);
        if (window->OpenSkeleton(file.path))
            continue;
        ++refused;
        // The question about the unsaved edit, then the one message.
        ASSERT_EQ(answerer.Count(), 2) << file.path.toStdString();
        EXPECT_EQ(answerer.titles.last(), "Open Skeleton");
        EXPECT_TRUE(answerer.texts.last().startsWith("Cannot read " + file.path + ": "))
            << answerer.texts.last().toStdString();
        EXPECT_TRUE(window->isVisible());
        EXPECT_EQ(GetScene().BoneNames(), bones);
        EXPECT_EQ(GetScene().SourcePath(), Sample());
    }
    EXPECT_GT(refused, int(files.size()) / 3);
}
} // namespace
