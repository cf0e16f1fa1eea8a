#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/Characterization.h>
#include <zelkin/ConfigDocument.h>
#include <zelkin/MappingTemplate.h>
#include <zelkin/NameMatcher.h>
#include <zelkin/TemplateLibrary.h>
#include <zelkin/UserConfiguration.h>

#include "MessageCapture.h"

namespace
{
int Node(const char* name)
{
    return BoneCatalogue::NodeId(name);
}
} // namespace

TEST(MappingTemplate, TheCorpusTemplateReadsInNodeOrderAndTheMissingTailStaysEmpty)
{
    MappingTemplate mmd;
    ASSERT_TRUE(mmd.Load(ZELKIN_CORPUS_DIR "/templates/mmd_romaji.xml"));
    EXPECT_EQ(mmd.GetEntry(Node("Reference")).pattern, "senta_");
    EXPECT_EQ(mmd.GetEntry(Node("LeftToeBase")).pattern, "hidariashi_kubi");
    EXPECT_EQ(mmd.GetEntry(Node("RightShoulderExtra")).pattern, "RightShoulderExtra"); // item 172, the last one
    EXPECT_TRUE(mmd.GetEntry(Node("LeafLeftUpLegRoll1")).pattern.isEmpty());
    EXPECT_FALSE(mmd.GetEntry(Node("Hips")).useRoot);
}

TEST(MappingTemplate, SavedTemplatesReadBackEqualAndNameTheirNodes)
{
    QTemporaryDir dir;
    MappingTemplate original;
    original.SetEntry(Node("Reference"), "", true);
    original.SetEntry(Node("Hips"), QStringLiteral("腰 <&\"'>"));
    original.SetEntry(Node("LeafRightForeArmRoll5"), "last one");
    const QString path = dir.filePath("t.xml");
    QString error;
    ASSERT_TRUE(original.Save(path, &error)) << error.toStdString();

    MappingTemplate loaded;
    ASSERT_TRUE(loaded.Load(path, &error)) << error.toStdString();
    EXPECT_EQ(loaded, original);

    ConfigDocument document;
    ASSERT_TRUE(document.Load(path));
    const QList<QStringList> rows = document.ReadTable("", "match_list", {"key", "use_root"});
    ASSERT_EQ(rows.size(), BoneCatalogue::NodeCount);
    EXPECT_EQ(rows[0], QStringList({"Reference", "true"}));
    EXPECT_EQ(rows[211], QStringList({"LeafRightForeArmRoll5", "false"}));
}

TEST(MappingTemplate, UnreadableFilesLeaveTheTemplateAsItWas)
{
    QTemporaryDir dir;
    MappingTemplate kept;
    kept.SetEntry(Node("Head"), "head");
    const MappingTemplate before = kept;
    QFile broken(dir.filePath("broken.xml"));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("<config_root><match_list><item value=\"x\"");
    broken.close();
    QFile other(dir.filePath("other.xml"));
    ASSERT_TRUE(other.open(QIODevice::WriteOnly));
    other.write("<config_root><name value=\"x\"/></config_root>");
    other.close();

    MessageCapture messages;
    QString error;
    EXPECT_FALSE(kept.Load(dir.filePath("broken.xml"), &error));
    EXPECT_TRUE(error.startsWith("Error in parsing"));
    EXPECT_FALSE(kept.Load(dir.filePath("other.xml"), &error));
    EXPECT_TRUE(error.contains("match_list"));
    EXPECT_FALSE(kept.Load(dir.filePath("absent.xml"), &error));
    EXPECT_TRUE(error.contains("absent.xml"));
    EXPECT_EQ(kept, before);
}

TEST(MappingTemplate, ExtractionRemovesThePrefixAndLeavesUnmappedNodesEmpty)
{
    Characterization characterization;
    characterization.SetBone(Node("Hips"), "Char01_Hips");
    characterization.SetBone(Node("LeftArm"), "char01:LeftArm");
    characterization.SetBone(Node("Head"), "Helmet");
    const MappingTemplate extracted =
        MappingTemplate::Extract(characterization, "Char01", UserConfiguration::BuiltInDelimiters());
    EXPECT_EQ(extracted.GetEntry(Node("Hips")).pattern, "Hips");
    EXPECT_EQ(extracted.GetEntry(Node("LeftArm")).pattern, "LeftArm");
    EXPECT_EQ(extracted.GetEntry(Node("Head")).pattern, "Helmet");
    EXPECT_TRUE(extracted.GetEntry(Node("Spine")).pattern.isEmpty());
    EXPECT_FALSE(extracted.GetEntry(Node("Hips")).useRoot);
    EXPECT_TRUE(MappingTemplate::Extract(Characterization(), "x", {}).IsEmpty());

    // The extracted template maps a second copy of the rig.
    const NameMatcher matcher(extracted, NameMatcher::Suffix, UserConfiguration::BuiltInDelimiters());
    const auto assignments = matcher.Match({"Char02_Hips", "Char02_LeftArm"}, "Char02", {});
    ASSERT_EQ(assignments.size(), 2u);
    EXPECT_EQ(assignments[0].nodeId, Node("Hips"));
    EXPECT_EQ(assignments[1].nodeId, Node("LeftArm"));
}

TEST(TemplateLibrary, ShippedTemplatesAreListedBesideTheUsersAndTheUserWins)
{
    QTemporaryDir dir;
    const TemplateLibrary library(dir.path());
    const QStringList shipped = library.Names();
    EXPECT_TRUE(shipped.contains("Zelkin"));
    EXPECT_TRUE(shipped.contains("Mixamo"));
    EXPECT_FALSE(library.IsUserTemplate("Zelkin"));

    MappingTemplate standard;
    ASSERT_TRUE(library.Load("Zelkin", standard));
    for (int nodeId = 0; nodeId < BoneCatalogue::NodeCount; ++nodeId)
        ASSERT_EQ(standard.GetEntry(nodeId).pattern, QString::fromLatin1(BoneCatalogue::NodeName(nodeId)));

    MappingTemplate mine;
    mine.SetEntry(Node("Hips"), "pelvis");
    ASSERT_TRUE(library.Save("Zelkin", mine));
    ASSERT_TRUE(library.Save("alpha", mine));
    EXPECT_TRUE(library.IsUserTemplate("Zelkin"));
    const QStringList names = library.Names();
    EXPECT_EQ(names.size(), shipped.size() + 1); // "Zelkin" is listed once
    EXPECT_EQ(names.count("Zelkin"), 1);
    EXPECT_EQ(names.first(), "alpha");
    QStringList sorted = names;
    sorted.sort(Qt::CaseInsensitive);
    EXPECT_EQ(names, sorted);
    MappingTemplate loaded;
    ASSERT_TRUE(library.Load("Zelkin", loaded));
    EXPECT_EQ(loaded.GetEntry(Node("Hips")).pattern, "pelvis");

    QString error;
    EXPECT_FALSE(library.Save("../escape", mine, &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_FALSE(library.Load("nothing", loaded, &error));
    EXPECT_TRUE(error.contains("nothing"));
}

TEST(TemplateLibrary, SavingCreatesTheUserFolder)
{
    QTemporaryDir dir;
    const TemplateLibrary library(dir.filePath("config/template"));
    MappingTemplate mine;
    mine.SetEntry(Node("Hips"), "pelvis");
    ASSERT_TRUE(library.Save("new", mine));
    EXPECT_TRUE(QFile::exists(dir.filePath("config/template/new.xml")));
}
