#include <cstdlib>
#include <functional>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/ConfigDocument.h>
#include <zelkin/ZELSolver.h>

#include "ProjectFile.h"
#include "RecentFiles.h"

namespace
{
// The required nodes, each mapped to a bone named after it, or `extra` more.
QStringList Bones(int extra = 0)
{
    QStringList bones;
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
        bones.append(QString());
    for (int nodeId : BoneCatalogue::RequiredNodes())
        bones[nodeId] = QString::fromLatin1(BoneCatalogue::NodeName(nodeId));
    for (int nodeId = 16; nodeId < 16 + extra; ++nodeId)
        bones[nodeId] = QStringLiteral("extra %1").arg(nodeId);
    return bones;
}

QByteArray StreamFor(const QStringList& bones, bool bigEndian)
{
    ZELCharacterDefinition definition {};
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
        definition.mUsedNodes[nodeId] = bones[nodeId].isEmpty() ? 0u : 1u;
    ZELCharacter* character = ZELCharacterCreate(&definition, std::malloc);
    int32_t length = 0;
    void* buffer = ZELCharacterizationStreamWrite(&length, &definition, character, bigEndian, std::malloc, std::free);
    const QByteArray stream(static_cast<const char*>(buffer), length);
    std::free(buffer);
    ZELCharacterDestroy(character, std::free);
    return stream;
}

void WriteBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray ReadBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class ProjectFileTest : public testing::Test
{
protected:
    void SetUp() override
    {
        const QDir root(work.path());
        ASSERT_TRUE(root.mkpath("rigs") && root.mkpath("projects"));
        project.skeletonPath = root.filePath("rigs/hero.glb");
        // A rest pose that only 9 significant digits give back exactly.
        QMatrix4x4 local;
        local.rotate(33.3f, 0.2f, -0.7f, 0.4f);
        local.translate(0.1f, 1.0f / 3.0f, -2e-7f);
        project.edits = {{ProjectFile::BoneEdit::Rename, "arm L", "armL", {}},
                         {ProjectFile::BoneEdit::Pose, "armL", "", local},
                         {ProjectFile::BoneEdit::Delete, "tail", "", {}}};
        project.entries.push_back({"Hero", true, StreamFor(Bones(), false), Bones()});
        project.entries.push_back({"Side", false, StreamFor(Bones(3), true), Bones(3)});
        project.current = "Side";
        path = root.filePath("projects/hero.zelproj");
        QString error;
        ASSERT_TRUE(project.Write(path, error)) << error.toStdString();
    }

    QTemporaryDir work;
    ProjectFile project;
    QString path;
};

TEST_F(ProjectFileTest, KeepsEverythingAndTheSkeletonRelativeToItself)
{
    ConfigDocument document;
    ASSERT_TRUE(document.Load(path));
    EXPECT_EQ(document.ReadValue("project", "skeleton"), "../rigs/hero.glb");
    // Rest-pose edits make it a project that older studios would misread; without them it is one they read.
    EXPECT_EQ(document.ReadValue("project", "format"), "2");
    ProjectFile unposed = project;
    unposed.edits.removeAt(1);
    const QString unposedPath = QDir(work.path()).filePath("projects/unposed.zelproj");
    QString written;
    ASSERT_TRUE(unposed.Write(unposedPath, written));
    ASSERT_TRUE(document.Load(unposedPath));
    EXPECT_EQ(document.ReadValue("project", "format"), "1");

    ProjectFile read;
    QString error;
    ASSERT_TRUE(read.Read(path, error)) << error.toStdString();
    EXPECT_EQ(read.skeletonPath, project.skeletonPath);
    EXPECT_EQ(read.edits, project.edits);
    EXPECT_EQ(read.current, "Side");
    ASSERT_EQ(read.entries.size(), 2u);
    for (size_t index = 0; index < 2; ++index)
    {
        EXPECT_EQ(read.entries[index].name, project.entries[index].name);
        EXPECT_EQ(read.entries[index].locked, project.entries[index].locked);
        EXPECT_EQ(read.entries[index].stream, project.entries[index].stream);
        EXPECT_EQ(read.entries[index].bones, project.entries[index].bones);
    }
}

TEST_F(ProjectFileTest, DamagedProjectIsRefusedWholeWithOneReason)
{
    const auto edited = [this](const std::function<void(ConfigDocument&)>& edit) {
        ConfigDocument document;
        EXPECT_TRUE(document.Load(path));
        edit(document);
        return document.ToByteArray();
    };
    const QString stream = QString::fromLatin1(project.entries[0].stream.toBase64());
    const auto bones = [](ConfigDocument& document, const QList<QStringList>& rows) {
        document.WriteTable("characterization_1", "bones", {"node", "bone"}, rows);
    };
    const auto edits = [&edited](const QList<QStringList>& rows) {
        return edited([&rows](ConfigDocument& d) {
            d.WriteTable("project", "bone_edits", {"kind", "bone", "name", "local"}, rows);
        });
    };
    const struct
    {
        const char* what;
        QByteArray bytes;
        const char* reason;
    } cases[] = {
        {"truncated", ReadBytes(path).left(ReadBytes(path).size() / 2), ""},
        {"empty", QByteArray(), "not a Zelkin Studio project"},
        {"newer", edited([](ConfigDocument& d) { d.WriteValue("project", "format", "3"); }), "newer version"},
        {"count too high", edited([](ConfigDocument& d) { d.WriteValue("project", "characterizations", "3"); }),
         "characterization_3"},
        {"count absurd", edited([](ConfigDocument& d) { d.WriteValue("project", "characterizations", "99999"); }),
         "list of characterizations"},
        {"no skeleton", edited([](ConfigDocument& d) { d.RemoveKey("project", "skeleton"); }), "skeleton"},
        {"same names", edited([](ConfigDocument& d) { d.WriteValue("characterization_2", "name", "Hero"); }),
         "two characterizations"},
        {"lock word", edited([](ConfigDocument& d) { d.WriteValue("characterization_1", "locked", "yes"); }),
         "characterization_1"},
        {"not base64", edited([](ConfigDocument& d) { d.WriteValue("characterization_1", "stream", "%%%"); }),
         "stream of \"Hero\" is damaged"},
        {"cut stream",
         edited([&stream](ConfigDocument& d) { d.WriteValue("characterization_1", "stream", stream.left(400)); }),
         "truncated"},
        {"foreign bytes", edited([](ConfigDocument& d) { d.WriteValue("characterization_1", "stream", "AAAAAAAA"); }),
         "not a characterization"},
        {"unknown node", edited([&bones](ConfigDocument& d) { bones(d, {{"Tail", "x"}}); }), "bone list"},
        {"names unlike stream", edited([&bones](ConfigDocument& d) { bones(d, {{"Hips", "x"}}); }), "do not fit"},
        {"edit kind",
         edited([](ConfigDocument& d) {
             d.WriteTable("project", "bone_edits", {"kind", "bone", "name"}, {{"twist", "a", "b"}});
         }),
         "bone edits"},
        {"pose of 15 numbers", edits({{"pose", "a", "", "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0"}}), "bone edits"},
        {"pose not finite", edits({{"pose", "a", "", "1 0 0 0 0 1 0 0 0 0 1 0 nan 0 0 1"}}), "bone edits"},
        {"pose projective", edits({{"pose", "a", "", "1 0 0 0.5 0 1 0 0 0 0 1 0 0 0 0 1"}}), "bone edits"},
        {"pose without one", edits({{"pose", "a", "", ""}}), "bone edits"},
        {"rename with a pose", edits({{"rename", "a", "b", "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1"}}), "bone edits"},
        {"current gone", edited([](ConfigDocument& d) { d.WriteValue("project", "current", "Nobody"); }), "Nobody"},
    };
    for (const auto& damaged : cases)
    {
        SCOPED_TRACE(damaged.what);
        const QString bad = QDir(work.path()).filePath("bad.zelproj");
        WriteBytes(bad, damaged.bytes);
        ProjectFile read = project;
        QString error;
        EXPECT_FALSE(read.Read(bad, error));
        EXPECT_TRUE(error.startsWith(QDir::toNativeSeparators(bad) + " cannot be opened: ")) << error.toStdString();
        EXPECT_TRUE(error.contains(QLatin1String(damaged.reason))) << error.toStdString();
        EXPECT_EQ(read.entries.size(), 2u);
        EXPECT_EQ(read.skeletonPath, project.skeletonPath);
        EXPECT_EQ(read.current, "Side");
    }
    ProjectFile read;
    QString error;
    EXPECT_FALSE(read.Read(QDir(work.path()).filePath("missing.zelproj"), error));
    EXPECT_TRUE(error.endsWith("no such file.")) << error.toStdString();
}

TEST_F(ProjectFileTest, FailedWriteLeavesTheOldFile)
{
    const QByteArray before = ReadBytes(path);
    ProjectFile unstorable = project;
    unstorable.entries[1].name = QStringLiteral("bad\x01name");
    QString error;
    EXPECT_FALSE(unstorable.Write(path, error));
    EXPECT_TRUE(error.contains("cannot store")) << error.toStdString();
    EXPECT_EQ(ReadBytes(path), before);

    EXPECT_FALSE(project.Write(QDir(work.path()).filePath("no/such/folder/x.zelproj"), error));
    EXPECT_TRUE(error.contains("cannot be saved")) << error.toStdString();
}

TEST(RecentFilesTest, NewestFirstWithoutRepeatsAndKept)
{
    QTemporaryDir work;
    const QString list = QDir(work.path()).filePath("config/recent.xml");
    {
        RecentFiles recent(list);
        for (int index = 0; index < 10; ++index)
            recent.Add(QDir(work.path()).filePath(QStringLiteral("rig%1.glb").arg(index)));
        recent.Add(QDir(work.path()).filePath("rig5.glb"));
        ASSERT_EQ(recent.Files().size(), RecentFiles::MaxEntries);
        EXPECT_TRUE(recent.Files().front().endsWith("rig5.glb"));
        EXPECT_TRUE(recent.Files()[1].endsWith("rig9.glb"));
        EXPECT_TRUE(recent.Files().back().endsWith("rig2.glb"));
        recent.Remove(QDir(work.path()).filePath("rig9.glb"));
    }
    RecentFiles again(list);
    EXPECT_EQ(again.Files().size(), RecentFiles::MaxEntries - 1);
    EXPECT_TRUE(again.Files()[1].endsWith("rig8.glb"));

    WriteBytes(list, "<config_root><studio><recent_files>");
    RecentFiles broken(list);
    EXPECT_TRUE(broken.Files().isEmpty());
    broken.Add("/tmp/a.bvh");
    EXPECT_EQ(RecentFiles(list).Files(), QStringList {"/tmp/a.bvh"});
}

} // namespace
