#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QSet>
#include <QTableWidget>
#include <QTest>

#include <gtest/gtest.h>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/ConfigDocument.h>
#include <zelkin/ConfigMirrorDialog.h>
#include <zelkin/MirrorMatcher.h>

namespace
{
int Node(const char* name)
{
    return BoneCatalogue::NodeId(name);
}

MirrorMatcher::BoneExists InScene(const QStringList& bones)
{
    const QSet<QString> scene(bones.begin(), bones.end());
    return [scene](const QString& bone) { return scene.contains(bone); };
}

QLineEdit* FocusedEditor()
{
    return qobject_cast<QLineEdit*>(QApplication::focusWidget());
}

QString Cell(const QTableWidget* table, int row, int column)
{
    return table->item(row, column) ? table->item(row, column)->text() : QString();
}
} // namespace

TEST(MirrorMatcher, APairReplacesEveryOccurrenceOfTheFirstKeywordFound)
{
    const MirrorMatcher::Pair rightLeft("Right", "Left");
    EXPECT_EQ(MirrorMatcher::ApplyPair("RightUpLeg", rightLeft), "LeftUpLeg");
    EXPECT_EQ(MirrorMatcher::ApplyPair("LeftUpLeg", rightLeft), "RightUpLeg");
    // Both keywords: the pair's first one decides and every occurrence of it goes.
    EXPECT_EQ(MirrorMatcher::ApplyPair("RightLeftArm", rightLeft), "LeftLeftArm");
    EXPECT_EQ(MirrorMatcher::ApplyPair("RightLeftArm", {"Left", "Right"}), "RightRightArm");
    EXPECT_EQ(MirrorMatcher::ApplyPair("Right_Arm_Right", rightLeft), "Left_Arm_Left");
    EXPECT_TRUE(MirrorMatcher::ApplyPair("Hips", rightLeft).isNull());
    EXPECT_TRUE(MirrorMatcher::ApplyPair("rightarm", rightLeft).isNull()); // case-sensitive
    EXPECT_TRUE(MirrorMatcher::ApplyPair("Arm", {"", "x"}).isNull());
}

TEST(MirrorMatcher, ConfiguredPairsComeBeforeTheFixedOneAndMustNameAnExistingBone)
{
    const MirrorMatcher matcher(QList<MirrorMatcher::Pair> {{"_L_", "_R_"}, {"Lf", "Rt"}});
    const auto scene = InScene({"arm_L_01", "arm_R_01", "LfHand", "RtHand", "RightFoot", "LeftFoot"});
    EXPECT_EQ(matcher.CounterpartBone("arm_L_01", scene), "arm_R_01");
    EXPECT_EQ(matcher.CounterpartBone("RtHand", scene), "LfHand");
    EXPECT_EQ(matcher.CounterpartBone("RightFoot", scene), "LeftFoot");
    EXPECT_TRUE(matcher.CounterpartBone("arm_L_02", scene).isNull());
    // Without a scene test the first applicable pair decides.
    EXPECT_EQ(MirrorMatcher().CounterpartBone("RightHandThumb1"), "LeftHandThumb1");
    EXPECT_TRUE(MirrorMatcher().CounterpartBone("Hips").isNull());
}

TEST(MirrorMatcher, MirrorAssignmentNeedsAnOppositeNodeAndAnotherExistingBone)
{
    const MirrorMatcher matcher(QList<MirrorMatcher::Pair> {{"_l", "_r"}});
    const auto scene = InScene({"arm_l", "arm_r", "spine_l", "spine_r", "hand_l"});
    const MirrorMatcher::Mirrored mirrored = matcher.MirrorAssignment(Node("LeftArm"), "arm_l", scene);
    ASSERT_TRUE(mirrored.IsValid());
    EXPECT_EQ(mirrored.nodeId, Node("RightArm"));
    EXPECT_EQ(mirrored.bone, "arm_r");
    EXPECT_EQ(matcher.MirrorAssignment(Node("LeafLeftArmRoll3"), "arm_l", scene).nodeId, Node("LeafRightArmRoll3"));

    EXPECT_FALSE(matcher.MirrorAssignment(Node("Spine"), "spine_l", scene).IsValid()); // a node without a side
    EXPECT_FALSE(matcher.MirrorAssignment(Node("LeftHand"), "hand_l", scene).IsValid()); // no such bone
    EXPECT_FALSE(MirrorMatcher(QList<MirrorMatcher::Pair> {{"x", "x"}}).MirrorAssignment(Node("LeftArm"), "x", InScene({"x"})).IsValid());
    EXPECT_FALSE(matcher.MirrorAssignment(-1, "arm_l", scene).IsValid());
}

TEST(MirrorMatcher, PairsLoadInFileOrderAndIncompleteOnesAreNotSaved)
{
    ConfigDocument document;
    ASSERT_TRUE(document.LoadFromData("<config_root><mirror_list><mirror>"
                                      "<item key=\"B\" value=\"b\"/><item key=\"A\" value=\"a\"/>"
                                      "</mirror></mirror_list></config_root>"));
    MirrorMatcher matcher(QList<MirrorMatcher::Pair> {{"old", "pair"}});
    matcher.Load(document);
    EXPECT_EQ(matcher.Pairs(), (QList<MirrorMatcher::Pair> {{"B", "b"}, {"A", "a"}}));

    matcher.SetPairs({{"L", "R"}, {"", "x"}, {"y", ""}});
    matcher.Save(document);
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(document.ReadPairs("mirror_list", "mirror"), (QList<MirrorMatcher::Pair> {{"L", "R"}}));
}

TEST(ConfigMirrorDialog, ShowsTheConfiguredPairsAndOkWritesTheCompleteRows)
{
    ConfigDocument configuration;
    configuration.WritePairs("mirror_list", "mirror", {{"_L", "_R"}, {"Lf", "Rt"}});
    configuration.SetModified(false);

    ConfigMirrorDialog dialog(configuration);
    EXPECT_EQ(dialog.windowTitle(), "Mirror Configuration");
    EXPECT_TRUE(dialog.isModal());
    QTableWidget* table = dialog.Table();
    ASSERT_EQ(table->columnCount(), 2);
    EXPECT_TRUE(table->horizontalHeaderItem(0)->text().contains("Left"));
    EXPECT_TRUE(table->horizontalHeaderItem(1)->text().contains("Right"));
    ASSERT_EQ(table->rowCount(), 2);
    EXPECT_EQ(Cell(table, 1, 0), "Lf");
    EXPECT_EQ(Cell(table, 1, 1), "Rt");

    dialog.AddRow();
    table->item(2, 0)->setText("left_");
    table->item(2, 1)->setText("right_");
    dialog.AddRow();
    table->item(3, 0)->setText("only one side");
    table->setCurrentCell(0, 0);
    dialog.RemoveRow();
    dialog.accept();

    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_TRUE(configuration.IsModified());
    EXPECT_EQ(configuration.ReadPairs("mirror_list", "mirror"),
              (QList<ConfigDocument::Pair> {{"Lf", "Rt"}, {"left_", "right_"}}));
}

TEST(ConfigMirrorDialog, CancelChangesNothing)
{
    ConfigDocument configuration;
    configuration.WritePairs("mirror_list", "mirror", {{"_L", "_R"}});
    configuration.SetModified(false);
    ConfigMirrorDialog dialog(configuration);
    dialog.RemoveRow(); // no current row: nothing happens
    EXPECT_EQ(dialog.Table()->rowCount(), 1);
    dialog.Table()->setCurrentCell(0, 0);
    dialog.RemoveRow();
    dialog.reject();
    EXPECT_FALSE(configuration.IsModified());
    EXPECT_EQ(configuration.ReadPairs("mirror_list", "mirror"), (QList<ConfigDocument::Pair> {{"_L", "_R"}}));
}

TEST(ConfigMirrorDialog, WorksFromTheKeyboard)
{
    ConfigDocument configuration;
    ConfigMirrorDialog dialog(configuration);
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    QTableWidget* table = dialog.Table();
    table->setFocus();

    QTest::keyClick(table, Qt::Key_Insert); // a new row, its first cell in edit
    QLineEdit* editor = FocusedEditor();
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, "Lft");
    QTest::keyClick(editor, Qt::Key_Return); // stores the text and leaves the dialog open
    QCoreApplication::processEvents();
    EXPECT_TRUE(dialog.isVisible());
    table->setCurrentCell(0, 1);
    QTest::keyClick(table, Qt::Key_F2);
    editor = FocusedEditor();
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, "Rgt");
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_EQ(Cell(table, 0, 0), "Lft");
    EXPECT_EQ(Cell(table, 0, 1), "Rgt");

    table->setFocus();
    QTest::keyClick(table, Qt::Key_Insert);
    QTest::keyClick(FocusedEditor(), Qt::Key_Escape);
    QCoreApplication::processEvents();
    ASSERT_EQ(table->rowCount(), 2);
    ASSERT_EQ(table->currentRow(), 1);
    table->setFocus();
    ASSERT_TRUE(table->hasFocus());
    QTest::keyClick(table, Qt::Key_Delete); // removes the current, second row
    ASSERT_EQ(table->rowCount(), 1);

    QTest::keyClick(table, Qt::Key_Return); // the OK button is the default
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(configuration.ReadPairs("mirror_list", "mirror"), (QList<ConfigDocument::Pair> {{"Lft", "Rgt"}}));
}
