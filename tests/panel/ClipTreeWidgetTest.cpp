// The clip browser: clip files written by the panel, listed per directory, and directories remembered in the
// configuration.
#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QMenu>
#include <QTemporaryDir>

#include <zelkin/ClipTreeWidget.h>
#include <zelkin/ConfigDocument.h>
#include <zelkin/ResourceBridge.h>
#include <zelkin/UserConfiguration.h>

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

QString ConfigFile()
{
    return PrivateAppData::ToolFolder() + QStringLiteral("/config/characterization_tool.xml");
}

// The "path" of every "clip_path" entry of the configuration file.
QStringList StoredClipPaths()
{
    ConfigDocument saved;
    QStringList paths;
    if (saved.Load(ConfigFile()))
    {
        for (const QStringList& row : saved.ReadEntries("clip_list", "clip_path", {"path"}))
            paths.append(row.front());
    }
    return paths;
}

bool WriteConfig(const QByteArray& text)
{
    QDir().mkpath(QFileInfo(ConfigFile()).absolutePath());
    QFile file(ConfigFile());
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(text) == text.size();
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

    EXPECT_EQ(StoredClipPaths(), QStringList({QDir(clips.path()).absolutePath(), QDir(more.path()).absolutePath()}));

    const std::unique_ptr<ResourceBridge> next = NextSession();
    ClipTreeWidget reopened(*next);
    EXPECT_EQ(reopened.GetDirectories(), tree.GetDirectories());
    ASSERT_EQ(reopened.topLevelItemCount(), 2);
    EXPECT_EQ(Children(reopened.topLevelItem(0)), QStringList({"Run.kst", "walk.kst"}));
}

TEST_F(Clips, DirectoriesWrittenInTheKeyedLayoutAreReadInOrder)
{
    ASSERT_TRUE(WriteConfig("<config_root>\n"
                            "    <name_match><match_type value=\"Contains\"/></name_match>\n"
                            "    <clip_list>\n"
                            "        <clip_path path=\"" + QDir(more.path()).absolutePath().toUtf8() + "\"/>\n"
                            "        <clip_path path=\"\"/>\n"
                            "        <clip_path path=\"" + QDir(clips.path()).absolutePath().toUtf8() + "\"/>\n"
                            "        <clip_path path=\"" + QDir(more.path()).absolutePath().toUtf8() + "\"/>\n"
                            "    </clip_list>\n"
                            "</config_root>\n"));
    const std::unique_ptr<ResourceBridge> next = NextSession();
    ClipTreeWidget tree(*next);
    EXPECT_EQ(tree.GetDirectories(), QStringList({QDir(more.path()).absolutePath(), QDir(clips.path()).absolutePath()}));
    ASSERT_EQ(tree.topLevelItemCount(), 2);
    EXPECT_EQ(Children(tree.topLevelItem(1)), QStringList({"Run.kst", "walk.kst"}));

    // Storing them again keeps the other settings and writes one entry per directory.
    tree.setCurrentItem(tree.topLevelItem(0));
    tree.RemoveDirectory();
    EXPECT_EQ(StoredClipPaths(), QStringList({QDir(clips.path()).absolutePath()}));
    EXPECT_EQ(NextSession()->GetConfiguration().MatchType(), NameMatcher::Contains);
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

    tree.setCurrentItem(tree.topLevelItem(0));
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

TEST_F(Clips, RemoveOnAClipAsksBeforeItsDirectoryGoes)
{
    ClipTreeWidget tree(*tool->GetBridge());
    tree.AddDirectoryPath(clips.path());
    tree.AddDirectoryPath(more.path());
    tree.setCurrentItem(tree.topLevelItem(0)->child(1));
    {
        ModalScript declined({ModalScript::Answer(QMessageBox::No)});
        tree.RemoveDirectory();
        EXPECT_EQ(declined.boxTitles, QStringList({"Remove Clip Directory"}));
        EXPECT_TRUE(declined.boxTexts.value(0).contains(QDir::toNativeSeparators(QDir(clips.path()).absolutePath())));
    }
    EXPECT_EQ(tree.GetDirectories().size(), 2);
    EXPECT_EQ(tree.GetCurrentClip(), QFileInfo(clips.filePath("walk.kst")).absoluteFilePath());
    {
        ModalScript accepted({ModalScript::Answer(QMessageBox::Yes)});
        tree.RemoveDirectory();
        EXPECT_TRUE(accepted.Done());
    }
    EXPECT_EQ(tree.GetDirectories(), QStringList({QDir(more.path()).absolutePath()}));
    EXPECT_TRUE(QFileInfo::exists(clips.filePath("walk.kst"))); // only the list forgets it
}

// The viewport of an empty browser holds text saying how to add a directory; a listed one shows its rows instead.
int InkPixels(ClipTreeWidget& tree)
{
    tree.resize(320, 240);
    tree.show();
    QApplication::processEvents();
    const QImage shot = tree.viewport()->grab().toImage();
    const QColor base = tree.viewport()->palette().color(QPalette::Base);
    int ink = 0;
    for (int y = 0; y < shot.height(); ++y)
    {
        for (int x = 0; x < shot.width(); ++x)
            ink += qAbs(qGray(shot.pixel(x, y)) - qGray(base.rgb())) > 96 ? 1 : 0;
    }
    return ink;
}

TEST_F(Clips, AnEmptyBrowserSaysHowToAddADirectory)
{
    ClipTreeWidget tree(*tool->GetBridge());
    EXPECT_TRUE(tree.GetEmptyText().contains(QStringLiteral("Add Clip Directory...")));
    const int empty = InkPixels(tree);
    EXPECT_GT(empty, 200);
    ASSERT_TRUE(tree.AddDirectoryPath(more.path())); // an empty directory: one row
    EXPECT_LT(InkPixels(tree), empty / 2);
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

    // The Windows file manager is started with the file selected, its path in native separators.
    EXPECT_EQ(ClipTreeWidget::ExplorerArgument(QStringLiteral("C:/clips/run/walk.kst")),
              QStringLiteral("/select,C:\\clips\\run\\walk.kst"));

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
