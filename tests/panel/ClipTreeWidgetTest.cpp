// The clip browser: clip files written by the panel, listed per directory, and directories remembered in the
// configuration.
#include <QFile>
#include <QFileDialog>
#include <QMenu>
#include <QTemporaryDir>

#include <zelkin/ClipTreeWidget.h>
#include <zelkin/ConfigDocument.h>
#include <zelkin/ResourceBridge.h>

#include "ModalScript.h"
#include "PanelFixture.h"

namespace
{

QStringList Children(const QTreeWidgetItem* top)
{
    QStringList names;
    for (int i = 0; i < top->childCount(); ++i)
        names.append(top->child(i)->text(0));
    return names;
}

struct Clips : MixamoPanel
{
    void SetUp() override
    {
        MixamoPanel::SetUp();
        model->AutoMatch();
        ASSERT_TRUE(clips.isValid());
        ASSERT_TRUE(more.isValid());
        ASSERT_TRUE(tool->SaveKst(clips.filePath("walk.kst"), 0, false));
        ASSERT_TRUE(tool->SaveKst(clips.filePath("Run.kst"), 1, true));
        ASSERT_TRUE(tool->SaveFile(clips.filePath("hero.zelc"), CharacterTool::BinaryLittleEndian, true));
    }

    // Another bridge on the same configuration file, as the next session of the host sees it.
    static std::unique_ptr<ResourceBridge> NextSession() { return std::make_unique<ResourceBridge>(QDir(), QDir()); }

    QTemporaryDir clips;
    QTemporaryDir more;
};

TEST_F(Clips, ListsTheClipFilesOfEachDirectoryAndRemembersTheDirectories)
{
    ClipTreeWidget tree(*tool->GetBridge());
    EXPECT_EQ(tree.topLevelItemCount(), 0);
    ASSERT_TRUE(tree.AddDirectoryPath(clips.path()));
    ASSERT_TRUE(tree.AddDirectoryPath(more.path() + QStringLiteral("/.")));
    EXPECT_FALSE(tree.AddDirectoryPath(clips.path())); // listed once
    EXPECT_FALSE(tree.AddDirectoryPath(clips.filePath("missing")));
    EXPECT_FALSE(tree.AddDirectoryPath(clips.filePath("walk.kst")));
    ASSERT_EQ(tree.topLevelItemCount(), 2);
    EXPECT_EQ(Children(tree.topLevelItem(0)), QStringList({"Run.kst", "walk.kst"})); // no .zelc, no .bones.xml
    EXPECT_EQ(tree.topLevelItem(0)->child(1)->data(0, ClipTreeWidget::PathRole).toString(),
              QFileInfo(clips.filePath("walk.kst")).absoluteFilePath());
    EXPECT_EQ(tree.topLevelItem(1)->childCount(), 0);

    ConfigDocument saved;
    ASSERT_TRUE(saved.Load(PrivateAppData::ToolFolder() + QStringLiteral("/config/characterization_tool.xml")));
    EXPECT_EQ(saved.ReadTable(QStringLiteral("clip_list"), QStringLiteral("clip_path"), {QStringLiteral("path")}),
              QList<QStringList>({{QDir(clips.path()).absolutePath()}, {QDir(more.path()).absolutePath()}}));

    const std::unique_ptr<ResourceBridge> next = NextSession();
    ClipTreeWidget reopened(*next);
    EXPECT_EQ(reopened.GetDirectories(), tree.GetDirectories());
    ASSERT_EQ(reopened.topLevelItemCount(), 2);
    EXPECT_EQ(Children(reopened.topLevelItem(0)), QStringList({"Run.kst", "walk.kst"}));
}

TEST_F(Clips, RefreshFindsNewClipsAndRemoveForgetsADirectory)
{
    ClipTreeWidget tree(*tool->GetBridge());
    tree.AddDirectoryPath(clips.path());
    tree.AddDirectoryPath(more.path());
    ASSERT_TRUE(tool->SaveKst(more.filePath("jump.kst"), 0, false));
    EXPECT_EQ(tree.topLevelItem(1)->childCount(), 0);
    tree.setCurrentItem(tree.topLevelItem(0)->child(1));
    tree.Refresh();
    EXPECT_EQ(Children(tree.topLevelItem(1)), QStringList({"jump.kst"}));
    EXPECT_EQ(tree.GetCurrentClip(), QFileInfo(clips.filePath("walk.kst")).absoluteFilePath()); // kept its place

    tree.setCurrentItem(tree.topLevelItem(0)->child(0)); // a clip row stands for its directory
    tree.RemoveDirectory();
    EXPECT_EQ(tree.GetDirectories(), QStringList({QDir(more.path()).absolutePath()}));
    ASSERT_EQ(tree.topLevelItemCount(), 1);
    const std::unique_ptr<ResourceBridge> next = NextSession();
    EXPECT_EQ(ClipTreeWidget(*next).GetDirectories(), tree.GetDirectories());

    QDir(more.path()).removeRecursively(); // gone since: still listed, greyed, nothing in it
    tree.Refresh();
    ASSERT_EQ(tree.topLevelItemCount(), 1);
    EXPECT_EQ(tree.topLevelItem(0)->childCount(), 0);
}

TEST_F(Clips, TheContextMenuOffersItsEntriesInOrderAndExploreRevealsTheCurrentClip)
{
    ClipTreeWidget tree(*tool->GetBridge());
    tree.AddDirectoryPath(clips.path());
    QStringList revealed;
    tree.SetRevealer([&revealed](const QString& path) {
        revealed.append(path);
        return true;
    });

    tree.setCurrentItem(nullptr);
    std::unique_ptr<QMenu> menu = tree.CreateContextMenu();
    QStringList texts;
    QList<bool> enabled;
    for (QAction* action : menu->actions())
    {
        texts.append(action->text());
        enabled.append(action->isEnabled());
    }
    EXPECT_EQ(texts, QStringList({"Refresh", "Add Clip Directory...", "Remove", "Explore..."}));
    EXPECT_EQ(enabled, QList<bool>({true, true, false, false}));
    tree.ShowExplorer();
    EXPECT_TRUE(revealed.isEmpty());

    tree.setCurrentItem(tree.topLevelItem(0)->child(1));
    menu = tree.CreateContextMenu();
    menu->actions().at(3)->trigger();
    EXPECT_EQ(revealed, QStringList({QFileInfo(clips.filePath("walk.kst")).absoluteFilePath()}));

    // A file manager that cannot be started is said once.
    tree.SetRevealer([](const QString&) { return false; });
    ModalScript script({ModalScript::Answer(QMessageBox::Ok)});
    tree.ShowExplorer();
    EXPECT_EQ(script.boxTitles, QStringList({"Explore"}));
}

TEST_F(Clips, AddingThroughTheDialogTakesAnExistingDirectory)
{
    ClipTreeWidget tree(*tool->GetBridge());
    ModalScript script({ModalScript::Accept<QFileDialog>([this](QFileDialog* dialog) {
        EXPECT_EQ(dialog->fileMode(), QFileDialog::Directory);
        dialog->setDirectory(more.path());
        dialog->selectFile(more.path());
    })});
    tree.AddDirectory();
    EXPECT_TRUE(script.Done());
    EXPECT_EQ(tree.GetDirectories(), QStringList({QDir(more.path()).absolutePath()}));
}

TEST_F(Clips, ActivatingAClipAnnouncesItsPath)
{
    ClipTreeWidget tree(*tool->GetBridge());
    tree.AddDirectoryPath(clips.path());
    QStringList activated;
    QObject::connect(&tree, &ClipTreeWidget::ClipActivated, [&activated](const QString& path) { activated.append(path); });
    emit tree.itemActivated(tree.topLevelItem(0), 0); // a directory row is no clip
    emit tree.itemActivated(tree.topLevelItem(0)->child(0), 0);
    EXPECT_EQ(activated, QStringList({QFileInfo(clips.filePath("Run.kst")).absoluteFilePath()}));
}

} // namespace
