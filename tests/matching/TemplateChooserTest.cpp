// Choosing a template with no name given: the ranking, the tie rule, unreadable user templates and the score.
#include <map>

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/MappingTemplate.h>
#include <zelkin/TemplateChooser.h>
#include <zelkin/TemplateLibrary.h>
#include <zelkin/UserConfiguration.h>

namespace
{
// Made-up bone names no shipped template knows, so only the user templates below can map them.
QString Bone(int index)
{
    return QStringLiteral("qx%1").arg(index, 2, 10, QLatin1Char('0'));
}

QStringList Bones(int count)
{
    QStringList bones;
    for (int index = 1; index <= count; ++index)
        bones.append(Bone(index));
    return bones;
}

class TemplateChooserTest : public ::testing::Test
{
protected:
    // Bone(i) goes to node i for every i in [first, last].
    void SaveTemplate(const QString& name, int first, int last)
    {
        MappingTemplate mappingTemplate;
        for (int nodeId = first; nodeId <= last; ++nodeId)
            mappingTemplate.SetEntry(nodeId, Bone(nodeId));
        QString error;
        ASSERT_TRUE(library.Save(name, mappingTemplate, &error)) << error.toStdString();
    }

    void WriteUserFile(const QString& name, const QByteArray& bytes)
    {
        QFile file(library.UserPathFor(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    TemplateChooser::Result Choose(const QStringList& bones, const QSet<QString>& leaves = {},
                                   NameMatcher::MatchType type = NameMatcher::Suffix)
    {
        const TemplateChooser chooser(library, type, UserConfiguration::BuiltInDelimiters());
        return chooser.Choose(bones, leaves);
    }

    QTemporaryDir userDirectory;
    TemplateLibrary library {userDirectory.path()};
};
} // namespace

TEST_F(TemplateChooserTest, RequiredNodesCountFirstThenAllNodesThenTheNameIgnoringCase)
{
    const QStringList bones = Bones(60);
    SaveTemplate("wide", 2, 59); // many nodes, but without the hips
    SaveTemplate("core", 1, 15); // exactly the required nodes
    TemplateChooser::Result result = Choose(bones);
    EXPECT_EQ(result.templateName, "core");
    EXPECT_EQ(result.requiredMapped, 15);
    EXPECT_EQ(result.mappedNodes, 15);
    EXPECT_EQ(int(result.assignments.size()), 15);
    EXPECT_EQ(result.assignments.front().nodeId, 1);
    EXPECT_EQ(result.assignments.front().bone, Bone(1));

    SaveTemplate("more", 1, 16);
    EXPECT_EQ(Choose(bones).templateName, "more");

    // Equal results: the first name in the library's order, which ignores case ("beta" before "More").
    ASSERT_TRUE(QFile::remove(library.UserPathFor("more")));
    SaveTemplate("More", 1, 16);
    SaveTemplate("beta", 1, 16);
    result = Choose(bones);
    EXPECT_EQ(result.templateName, "beta");
    EXPECT_EQ(result.mappedNodes, 16);
}

TEST_F(TemplateChooserTest, UnreadableUserTemplatesAreNamedAndLeftOut)
{
    SaveTemplate("good", 1, 15);
    WriteUserFile("broken", "<config_root><match_list><item key=\"Hips\" val");
    WriteUserFile("empty_root", "<config_root/>");
    const TemplateChooser chooser(library, NameMatcher::Suffix, UserConfiguration::BuiltInDelimiters());
    const QStringList problems = chooser.Problems();
    ASSERT_EQ(problems.size(), 2);
    EXPECT_TRUE(problems[0].contains("broken.xml")) << problems[0].toStdString();
    EXPECT_TRUE(problems[1].contains("empty_root.xml")) << problems[1].toStdString();
    EXPECT_FALSE(chooser.TemplateNames().contains("broken"));
    EXPECT_TRUE(chooser.TemplateNames().contains("good"));
    EXPECT_TRUE(chooser.TemplateNames().contains("Zelkin"));
    EXPECT_EQ(chooser.Choose(Bones(15), {}).templateName, "good");
}

TEST_F(TemplateChooserTest, NoResultWhenNothingMaps)
{
    for (const QStringList& bones : {QStringList {"foo", "bar"}, QStringList()})
    {
        const TemplateChooser::Result result = Choose(bones);
        EXPECT_FALSE(result.IsValid());
        EXPECT_EQ(result.mappedNodes, 0);
        EXPECT_TRUE(result.assignments.empty());
        EXPECT_EQ(result.candidateBones, bones.size());
        EXPECT_EQ(result.Score(), 0.0);
    }
    EXPECT_EQ(Choose({"foo", "bar"}).Summary(), "No mapping template fits any of the 2 bone(s).");
}

TEST_F(TemplateChooserTest, ANodeReachedByTwoBonesCountsOnce)
{
    // A root entry takes every bone named like the root, even when its node is taken.
    MappingTemplate rooted;
    rooted.SetEntry(0, QString(), true);
    rooted.SetEntry(1, Bone(1));
    ASSERT_TRUE(library.Save("aa_rooted", rooted));
    const TemplateChooser::Result result = Choose({"Root", Bone(1), "ROOT"});
    EXPECT_EQ(result.templateName, "aa_rooted");
    EXPECT_EQ(result.assignments.size(), 3u);
    EXPECT_EQ(result.mappedNodes, 2);
    EXPECT_EQ(result.requiredMapped, 1);
}

TEST_F(TemplateChooserTest, TheConfiguredMatchTypeIsUsed)
{
    // Names with a trailing tag end with no pattern, but contain the standard ones.
    QStringList bones;
    for (int nodeId : BoneCatalogue::RequiredNodes())
        bones.append(QStringLiteral("c1_%1_jnt").arg(BoneCatalogue::NodeName(nodeId)));
    EXPECT_FALSE(Choose(bones, {}, NameMatcher::Suffix).IsValid());
    const TemplateChooser::Result contains = Choose(bones, {}, NameMatcher::Contains);
    EXPECT_TRUE(contains.IsValid());
    EXPECT_EQ(contains.requiredMapped, 15);
}

TEST_F(TemplateChooserTest, OnlyLeavesNamedAsEndsAreLeftOutOfTheScore)
{
    for (const char* end : {"HeadTop_End", "LeftToe_END", "Bip01 L Finger0Nub", "EndSite_lhand",
                            "mixamorig:EndSite_neck", "Index_Tip", "EndSite", "toeend"})
        EXPECT_TRUE(TemplateChooser::MarksEnd(QString(end))) << end;
    for (const char* joint : {"Head", "Endurance", "tiptoe", "LeftHandIndex4", "hidari_oyayubi_saki", ""})
        EXPECT_FALSE(TemplateChooser::MarksEnd(QString(joint))) << joint;

    const QStringList bones = {"Hips", "LegEnd", "LeftFoot", "LeftToe_End", "Head", "HeadTop_End", "EndSite_Head"};
    // "LegEnd" has a child, so it is a joint whatever its name says.
    const QSet<QString> leaves = {"LeftToe_End", "Head", "HeadTop_End", "EndSite_Head"};
    EXPECT_EQ(TemplateChooser::CandidateCount(bones, leaves), 4);
    EXPECT_EQ(TemplateChooser::CandidateCount(bones, {}), 7);

    MappingTemplate three;
    three.SetEntry(1, "Hips");
    three.SetEntry(4, "LeftFoot");
    three.SetEntry(15, "Head");
    ASSERT_TRUE(library.Save("aa_three", three));
    const TemplateChooser::Result result = Choose(bones, leaves);
    EXPECT_EQ(result.templateName, "aa_three"); // the standard names template maps as much, but comes later
    EXPECT_EQ(result.mappedNodes, 3);
    EXPECT_EQ(result.candidateBones, 4);
    EXPECT_DOUBLE_EQ(result.Score(), 0.75);
    EXPECT_EQ(result.Summary(), "Template \"aa_three\": 3 of 4 bones mapped (75%).");
}
