// The name match page: the tree against the model and the host, the assignment questions, the context menu's
// enabling rules, in-place editing and the bone completer.
#include <deque>
#include <functional>
#include <memory>

#include <QAbstractButton>
#include <QApplication>
#include <QCompleter>
#include <QLineEdit>
#include <QPointer>
#include <QScrollBar>
#include <QMenu>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QTreeWidgetItem>

#include <gtest/gtest.h>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/CharacterTool.h>
#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationModel.h>
#include <zelkin/ResourceBridge.h>

#include "CompleterWidget.h"
#include "ModalAnswerer.h"
#include "NameMatchTreeWidget.h"
#include "NameMatchWidget.h"
#include "PictureCache.h"
#include "ReadablePalette.h"
#include "TestHub.h"
#include "TestScenes.h"

namespace
{
QString Rig(int nodeId)
{
    return QStringLiteral("rig:") + QLatin1String(BoneCatalogue::NodeName(nodeId));
}

// Handles the modal windows that open, in order, one step each; remembers the message boxes' titles and texts.
class ModalScript
{
public:
    using Step = std::function<void(QWidget*)>;

    explicit ModalScript(std::deque<Step> steps)
        : mSteps(std::move(steps))
    {
        QObject::connect(&mTimer, &QTimer::timeout, [this] { Next(); });
        mTimer.start(5);
    }

    static Step Click(QMessageBox::StandardButton button)
    {
        return [button](QWidget* modal) {
            auto* box = qobject_cast<QMessageBox*>(modal);
            ASSERT_NE(box, nullptr);
            ASSERT_NE(box->button(button), nullptr) << box->text().toStdString();
            box->button(button)->click();
        };
    }

    QStringList titles;
    QStringList texts;
    int Left() const { return static_cast<int>(mSteps.size()); }

private:
    void Next()
    {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal == nullptr)
            return;
        if (auto* box = qobject_cast<QMessageBox*>(modal))
        {
            titles.append(box->windowTitle());
            texts.append(box->text());
        }
        if (mSteps.empty())
        {
            modal->close();
            return;
        }
        Step step = mSteps.front();
        mSteps.pop_front();
        step(modal);
    }

    std::deque<Step> mSteps;
    QTimer mTimer;
};

class NameMatchTest : public testing::Test
{
protected:
    void SetUp() override
    {
        testscenes::AddHandMadeTPose(hub);
        tool = std::make_unique<CharacterTool>(false, "", "", &host, &hub);
        model = tool->GetModel();
        ASSERT_NE(model, nullptr);
        hub.UpdateCharacterList({Characterization::DefaultName()}); // the host has the character
        widget = std::make_unique<NameMatchWidget>(nullptr, &hub, tool->GetBridge(), model, tool.get());
        widget->resize(400, 600);
        widget->show();
    }

    QTreeWidgetItem* Row(int nodeId, int which = 0) const { return widget->GetNodeRows(nodeId).at(which); }
    QString BoneShown(int nodeId) const { return Row(nodeId)->text(NameMatchWidget::BoneColumn); }
    NameMatchTreeWidget* Tree() const { return widget->GetTree(); }

    // Makes a row current as the user would, then sets the host selection the test wants.
    void Pick(QTreeWidgetItem* row, const QStringList& selection = {})
    {
        Tree()->setCurrentItem(row);
        hub.selection = selection;
    }

    void MapRequired()
    {
        for (int nodeId : BoneCatalogue::RequiredNodes())
            ASSERT_TRUE(model->AssignBone(nodeId, Rig(nodeId)));
    }

    // Each entry's text with whether it is enabled; separators left out.
    QMap<QString, bool> MenuEntries()
    {
        QMap<QString, bool> entries;
        std::unique_ptr<QMenu> menu = widget->CreateContextMenu();
        if (!menu)
            return entries;
        for (QAction* action : menu->actions())
        {
            if (!action->isSeparator())
                entries.insert(action->text(), action->isEnabled());
        }
        return entries;
    }

    bool ShowsBubble(QTreeWidgetItem* row, const QString& picture)
    {
        const QPixmap& expected = tool->GetBridge()->GetPictures().Get(picture);
        const QImage shown = row->icon(NameMatchWidget::NodeColumn).pixmap(expected.size()).toImage();
        return !expected.isNull() &&
               shown.convertToFormat(QImage::Format_ARGB32) == expected.toImage().convertToFormat(QImage::Format_ARGB32);
    }

    QWidget host;
    TestHub hub;
    std::unique_ptr<CharacterTool> tool;
    CharacterizationModel* model = nullptr;
    std::unique_ptr<NameMatchWidget> widget;
};

// ---- the tree follows the model and the host ----

TEST_F(NameMatchTest, GroupsHoldTheirNodesInOrderAndOnlyTheRequiredGroupIsOpen)
{
    ASSERT_EQ(Tree()->topLevelItemCount(), 1);
    QTreeWidgetItem* body = Tree()->topLevelItem(0);
    QStringList titles;
    for (int i = 0; i < body->childCount(); ++i)
        titles << body->child(i)->text(0);
    EXPECT_EQ(titles, QStringList({"Base (required)", "Auxiliary", "Spine", "Neck", "Roll", "Special", "Left Hand",
                                   "Right Hand", "Left Foot", "Right Foot", "Inner Finger"}));
    EXPECT_TRUE(widget->GetGroupRow("Base (required)")->isExpanded());
    EXPECT_FALSE(widget->GetGroupRow("Spine")->isExpanded());

    // Leaf rolls run limb by limb, each run stepping by 8.
    QTreeWidgetItem* leaf = widget->GetGroupRow("Leaf");
    EXPECT_EQ(leaf->parent(), widget->GetGroupRow("Roll"));
    ASSERT_EQ(leaf->childCount(), 40);
    const int expected[] = {172, 180, 188, 196, 204, 173};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(NameMatchWidget::NodeOfRow(leaf->child(i)), expected[i]);
    // Spine and Neck also head their own groups.
    EXPECT_EQ(Row(8, 1)->parent(), widget->GetGroupRow("Spine"));
    EXPECT_EQ(widget->GetGroupRow("Spine")->indexOfChild(Row(8, 1)), 0);
    EXPECT_EQ(Row(20, 1)->parent(), widget->GetGroupRow("Neck"));
    EXPECT_TRUE(widget->GetNodeRows(0).empty());
}

TEST_F(NameMatchTest, RowsShowBonesAndFollowARenameInTheHost)
{
    ASSERT_TRUE(model->AssignBone(8, "rig:Spine"));
    EXPECT_EQ(Row(8, 0)->text(1), "rig:Spine");
    EXPECT_EQ(Row(8, 1)->text(1), "rig:Spine");

    hub.RenameSceneBone("rig:Spine", "rig:Spine_renamed");
    EXPECT_EQ(Row(8, 0)->text(1), "rig:Spine_renamed");
    EXPECT_EQ(Row(8, 1)->text(1), "rig:Spine_renamed");

    hub.RemoveSceneBone("rig:Spine_renamed");
    EXPECT_EQ(BoneShown(8), "");
}

TEST_F(NameMatchTest, BubblesTellTheStateAndHighlightedRowsKeepTheGreenHighlightForErrors)
{
    MapRequired();
    hub.hostValidation = [](ValidationLog& log) {
        log.SetValidationState(Error, "host refuses the hand");
        log.LogError(11, "hand error");
        log.LogWarning(14, "hand warning");
    };
    model->Validate();
    EXPECT_TRUE(ShowsBubble(Row(1), "BubbleSmall_Green.png"));
    EXPECT_TRUE(ShowsBubble(Row(11), "BubbleSmall_Red.png"));
    EXPECT_TRUE(ShowsBubble(Row(14), "BubbleSmall_Orange.png"));
    EXPECT_TRUE(ShowsBubble(Row(23), "BubbleSmall_Gray.png"));
    EXPECT_EQ(Row(11)->toolTip(0), "hand error");

    hub.selection = QStringList {Rig(11), Rig(14), Rig(1)};
    emit hub.selectionChanged();
    EXPECT_TRUE(NameMatchWidget::IsHighlighted(Row(11)));
    EXPECT_FALSE(NameMatchWidget::IsHighlighted(Row(12)));
    EXPECT_TRUE(ShowsBubble(Row(11), "BubbleSmall_Green_Highlight.png"));
    EXPECT_TRUE(ShowsBubble(Row(14), "BubbleSmall_Orange_Highlight.png"));
    EXPECT_TRUE(ShowsBubble(Row(1), "BubbleSmall_Green_Highlight.png"));

    hub.selection.clear();
    emit hub.selectionChanged();
    EXPECT_TRUE(ShowsBubble(Row(11), "BubbleSmall_Red.png"));
}

TEST_F(NameMatchTest, PickingARowEditsItsNodeAndSelectsItsBoneInTheHost)
{
    ASSERT_TRUE(model->AssignBone(8, "rig:Spine"));
    hub.selection.clear();
    // The second row of Spine, in its own group: the tree must stay there, not jump to the first row.
    Tree()->setCurrentItem(Row(8, 1));
    EXPECT_EQ(model->GetEditedPart(), 8);
    EXPECT_EQ(hub.selection, QStringList {"rig:Spine"});
    EXPECT_EQ(Tree()->currentItem(), Row(8, 1));

    // The figure changes the edited part: the tree follows without selecting anything in the host.
    hub.selection.clear();
    model->SetEditedPart(35, false);
    EXPECT_EQ(Tree()->currentItem(), Row(35));
    EXPECT_TRUE(widget->GetGroupRow("Neck")->isExpanded());
    EXPECT_TRUE(hub.selection.isEmpty());

    model->SetEditedPart(CharacterizationModel::NoPart, false);
    EXPECT_EQ(Tree()->currentItem(), nullptr);
}

TEST_F(NameMatchTest, ARowTheFigurePicksComesIntoSightWithItsNeighboursAndTheNodeColumn)
{
    widget->resize(262, 300);
    QApplication::processEvents();
    for (int nodeId : {140, 12, 97, 60})
    {
        model->SetEditedPart(nodeId, false);
        QApplication::processEvents();
        const QRect row = Tree()->visualItemRect(Row(nodeId));
        const QRect room = Tree()->viewport()->rect();
        EXPECT_GE(row.top() - room.top(), 3 * row.height()) << nodeId;
        EXPECT_GE(room.bottom() - row.bottom(), 3 * row.height()) << nodeId;
        // Never sideways: the groups and node names stay where they start, the bones keep a share of the width.
        EXPECT_EQ(Tree()->horizontalScrollBar()->value(), 0) << nodeId;
        EXPECT_LE(Tree()->columnWidth(NameMatchWidget::NodeColumn), room.width() * 2 / 3) << nodeId;
    }
}

TEST_F(NameMatchTest, TheCurrentRowsTextIsReadableOnItsHighlight)
{
    const QPalette original = QApplication::palette();
    QPalette light = original;
    light.setColor(QPalette::Highlight, QColor(48, 140, 198)); // 3.7:1 under white
    light.setColor(QPalette::HighlightedText, Qt::white);
    QApplication::setPalette(light);
    QApplication::processEvents();
    const QPalette& shown = Tree()->palette();
    for (QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive})
    {
        EXPECT_GE(ContrastRatio(shown.color(group, QPalette::HighlightedText), shown.color(group, QPalette::Highlight)),
                  5.5);
        EXPECT_EQ(shown.color(group, QPalette::Highlight).hue(), QColor(48, 140, 198).hue()); // the same blue
    }
    QApplication::setPalette(original);
}

// ---- assignment asks the figure's questions ----

TEST_F(NameMatchTest, CancelInTheBeingUsedBoxLeavesBothNodesUnchanged)
{
    ASSERT_TRUE(model->AssignBone(9, "rig:LeftArm"));
    Pick(Row(12), {"rig:LeftArm"});
    ModalAnswerer answer(QMessageBox::Cancel);
    widget->AssignSelection();
    ASSERT_EQ(answer.Count(), 1);
    EXPECT_EQ(answer.titles.front(), "Bone Already Assigned");
    EXPECT_EQ(answer.texts.front(), "Bone \"rig:LeftArm\" is being used for the \"LeftArm\".\nClear?");
    EXPECT_EQ(model->GetAssignedBone(9), "rig:LeftArm");
    EXPECT_EQ(model->GetAssignedBone(12), "");
    EXPECT_EQ(BoneShown(9), "rig:LeftArm");
}

TEST_F(NameMatchTest, OkInTheBeingUsedBoxMovesTheBoneAndTheTreeFollows)
{
    ASSERT_TRUE(model->AssignBone(9, "rig:LeftArm"));
    Pick(Row(1));
    ModalAnswerer answer(QMessageBox::Ok);
    EXPECT_TRUE(widget->GetAssignment().Assign(12, "rig:LeftArm"));
    EXPECT_EQ(answer.Count(), 1);
    EXPECT_EQ(model->GetAssignedBone(9), "");
    EXPECT_EQ(model->GetAssignedBone(12), "rig:LeftArm");
    EXPECT_EQ(BoneShown(9), "");
    EXPECT_EQ(BoneShown(12), "rig:LeftArm");
    EXPECT_EQ(model->GetEditedPart(), 12);
    EXPECT_EQ(Tree()->currentItem(), Row(12));
}

TEST_F(NameMatchTest, ReplacingABoneAsksFirstAndNoKeepsTheOldOne)
{
    ASSERT_TRUE(model->AssignBone(12, "rig:RightArm"));
    ASSERT_TRUE(model->AssignBone(9, "rig:LeftArm"));
    Pick(Row(12), {"rig:LeftArm"});
    {
        ModalScript script({ModalScript::Click(QMessageBox::No)});
        widget->AssignSelection();
        ASSERT_EQ(script.texts.size(), 1);
        EXPECT_EQ(script.texts.front(), "\"RightArm\" is assigned to bone \"rig:RightArm\".\nChange to \"rig:LeftArm\"?");
    }
    EXPECT_EQ(model->GetAssignedBone(12), "rig:RightArm");
    EXPECT_EQ(model->GetAssignedBone(9), "rig:LeftArm");

    ModalScript script({ModalScript::Click(QMessageBox::Yes), ModalScript::Click(QMessageBox::Ok)});
    widget->AssignSelection();
    EXPECT_EQ(script.Left(), 0);
    EXPECT_EQ(model->GetAssignedBone(12), "rig:LeftArm");
    EXPECT_EQ(model->GetAssignedBone(9), "");
}

TEST_F(NameMatchTest, TheSameBoneAgainAsksNothing)
{
    ASSERT_TRUE(model->AssignBone(9, "rig:LeftArm"));
    Pick(Row(9), {"rig:LeftArm"});
    const int journalSize = hub.journal.size();
    ModalAnswerer answer(QMessageBox::Ok);
    widget->AssignSelection();
    EXPECT_EQ(answer.Count(), 0);
    EXPECT_EQ(hub.journal.size(), journalSize);
}

TEST_F(NameMatchTest, MirrorModeAsksAgainForTheMirroredHalfUnderItsOwnTitle)
{
    ASSERT_TRUE(model->AssignBone(12, "rig:RightForeArm"));
    model->SetMirrorMode(true);
    Pick(Row(9), {"rig:LeftArm"});
    ModalScript script({ModalScript::Click(QMessageBox::Yes)});
    widget->AssignSelection();
    EXPECT_EQ(script.titles, QStringList {"Mirroring: Bone Already Assigned"});
    EXPECT_EQ(model->GetAssignedBone(9), "rig:LeftArm");
    EXPECT_EQ(model->GetAssignedBone(12), "rig:RightArm");
}

// ---- context menu ----

TEST_F(NameMatchTest, MenuEntriesInOrderAllEnabledOnAnEditableNodeRowWithASelection)
{
    Tree()->setCurrentItem(nullptr);
    EXPECT_EQ(widget->CreateContextMenu(), nullptr);

    Pick(Row(3), {"rig:LeftLeg"});
    std::unique_ptr<QMenu> menu = widget->CreateContextMenu();
    ASSERT_TRUE(menu);
    QStringList texts;
    for (QAction* action : menu->actions())
    {
        texts << (action->isSeparator() ? QString("-") : action->text());
        EXPECT_TRUE(action->isEnabled()) << action->text().toStdString();
    }
    EXPECT_EQ(texts, QStringList({"Assign Selected Bone", "Change Assigned Bone...", "-", "Clear", "Clear All", "-",
                                  "Invert Joint", "-", "Character View"}));
}

TEST_F(NameMatchTest, ARightClickMakesTheRowCurrentAndPopsTheMenu)
{
    QStringList shown;
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [&shown] {
        if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget()))
        {
            for (QAction* action : menu->actions())
                shown << action->text();
            menu->close();
        }
    });
    closer.start(5);
    QTest::mousePress(Tree()->viewport(), Qt::RightButton, {}, Tree()->visualItemRect(Row(9)).center());
    EXPECT_EQ(Tree()->currentItem(), Row(9));
    EXPECT_TRUE(shown.contains("Change Assigned Bone..."));
}

TEST_F(NameMatchTest, InvertJointIsOfferedOnlyOnTheFourHingeJoints)
{
    for (int nodeId = 1; nodeId < BoneCatalogue::NodeCount; ++nodeId)
    {
        if (widget->GetNodeRows(nodeId).empty())
            continue;
        Pick(Row(nodeId));
        const bool hinge = nodeId == 3 || nodeId == 6 || nodeId == 10 || nodeId == 13;
        EXPECT_EQ(MenuEntries().value("Invert Joint"), hinge) << nodeId;
    }
}

TEST_F(NameMatchTest, InvertJointTogglesTheKnee)
{
    Pick(Row(6));
    widget->InvertJoint();
    EXPECT_TRUE(model->IsInverted(IDCCHub::RightKnee));
    EXPECT_FALSE(model->IsInverted(IDCCHub::LeftKnee));
    widget->InvertJoint();
    EXPECT_FALSE(model->IsInverted(IDCCHub::RightKnee));
}

TEST_F(NameMatchTest, AssigningNeedsAHostSelectionAndANodeRow)
{
    Pick(Row(9));
    QMap<QString, bool> entries = MenuEntries();
    EXPECT_FALSE(entries.value("Assign Selected Bone"));
    EXPECT_TRUE(entries.value("Change Assigned Bone..."));

    Pick(widget->GetGroupRow("Spine"), {"rig:Spine"});
    entries = MenuEntries();
    EXPECT_FALSE(entries.value("Assign Selected Bone"));
    EXPECT_FALSE(entries.value("Change Assigned Bone..."));
    EXPECT_TRUE(entries.value("Clear"));
    EXPECT_TRUE(entries.value("Clear All"));
    EXPECT_FALSE(entries.value("Invert Joint"));
}

TEST_F(NameMatchTest, ALockedCharacterizationOffersOnlyTheCharacterView)
{
    MapRequired();
    model->SetEditMode(true);
    ASSERT_TRUE(model->IsLocked());
    Pick(Row(3), {"rig:LeftLeg"});
    const QMap<QString, bool> entries = MenuEntries();
    ASSERT_EQ(entries.size(), 6);
    for (auto entry = entries.begin(); entry != entries.end(); ++entry)
        EXPECT_EQ(entry.value(), entry.key() == "Character View") << entry.key().toStdString();

    // Typing is refused with the figure's explanation and changes nothing.
    ModalAnswerer answer(QMessageBox::Ok);
    widget->SetItemEditable(Row(3), NameMatchWidget::BoneColumn);
    EXPECT_EQ(answer.titles, QStringList {"Characterization Locked"});
    EXPECT_FALSE(Tree()->IsEditing());
    QTest::keyClick(Tree(), Qt::Key_Delete);
    EXPECT_EQ(model->GetAssignedBone(3), "rig:LeftLeg");
    EXPECT_EQ(answer.Count(), 1);
}

TEST_F(NameMatchTest, TheHostsPlaceholderCharacterOffersOnlyTheCharacterView)
{
    // A host that has made no character yet: the panel's working characterization is the host's placeholder.
    TestHub fresh;
    testscenes::AddHandMadeTPose(fresh);
    QWidget freshHost;
    CharacterTool freshTool(false, "", "", &freshHost, &fresh);
    NameMatchWidget& names = *freshTool.GetNameMatchWidget();
    names.GetTree()->setCurrentItem(names.GetNodeRows(3).front());
    fresh.selection = {"rig:LeftLeg"};
    std::unique_ptr<QMenu> menu = names.CreateContextMenu();
    for (QAction* action : menu->actions())
    {
        if (!action->isSeparator())
        {
            EXPECT_EQ(action->isEnabled(), action->text() == "Character View") << action->text().toStdString();
        }
    }

    ModalAnswerer answer(QMessageBox::Ok);
    names.AssignSelection();
    EXPECT_EQ(answer.titles, QStringList {"Characterization Not Created"});
    EXPECT_EQ(answer.texts, QStringList {"You must create a new characterization before you can edit its bone mappings."});
    EXPECT_EQ(freshTool.GetModel()->GetAssignedBone(3), "");

    // Creating one from the panel is what the message asks for.
    ASSERT_TRUE(freshTool.CreateCharacterization(QStringLiteral("Hero")));
    names.GetTree()->setCurrentItem(names.GetNodeRows(3).front());
    names.AssignSelection();
    EXPECT_EQ(freshTool.GetModel()->GetAssignedBone(3), "rig:LeftLeg");
    EXPECT_EQ(answer.Count(), 1);
}

TEST_F(NameMatchTest, ClearOnAGroupRowEmptiesOnlyThatGroup)
{
    ASSERT_TRUE(model->AssignBone(8, "rig:Spine"));
    ASSERT_TRUE(model->AssignBone(23, "rig:Spine1"));
    ASSERT_TRUE(model->AssignBone(1, "rig:Hips"));
    Pick(widget->GetGroupRow("Spine"));
    widget->ClearSelectedPart();
    EXPECT_EQ(model->GetAssignedBone(8), "");
    EXPECT_EQ(model->GetAssignedBone(23), "");
    EXPECT_EQ(model->GetAssignedBone(1), "rig:Hips");

    widget->ClearAllParts();
    EXPECT_EQ(model->GetAssignedBone(1), "");
}

TEST_F(NameMatchTest, CharacterViewTurnsThePanelToTheFigure)
{
    tool->setCurrentViewTab(1);
    QSignalSpy spy(widget.get(), &NameMatchWidget::ViewTabRequested);
    widget->SwitchToCharacterView();
    ASSERT_EQ(spy.count(), 1);
    EXPECT_EQ(spy.front().front().toInt(), 0);
    EXPECT_EQ(tool->currentViewTab(), 0);
}

// ---- in-place editing and keys ----

class NameMatchEditTest : public NameMatchTest
{
protected:
    QLineEdit* OpenEditor(int nodeId)
    {
        Tree()->setCurrentItem(Row(nodeId));
        QTest::keyClick(Tree(), Qt::Key_F2);
        return qobject_cast<QLineEdit*>(Tree()->indexWidget(Tree()->currentIndex().siblingAtColumn(1)));
    }

    void Type(QLineEdit* editor, const QString& text)
    {
        editor->setText(text);
        const QPointer<QLineEdit> open(editor);
        QTest::keyClick(editor, Qt::Key_Return);
        // The editor commits after the key, and the name is applied only once the editor has closed; a loaded
        // machine can take a while to get there.
        EXPECT_TRUE(QTest::qWaitFor([&open] { return open.isNull(); }, 5000)) << "the editor stayed open";
        QTest::qWait(20);
    }
};

TEST_F(NameMatchEditTest, TypingABoneNameAssignsIt)
{
    QLineEdit* editor = OpenEditor(9);
    ASSERT_NE(editor, nullptr);
    ASSERT_NE(editor->completer(), nullptr);
    Type(editor, "  rig:LeftArm ");
    EXPECT_EQ(model->GetAssignedBone(9), "rig:LeftArm");
    EXPECT_EQ(BoneShown(9), "rig:LeftArm");
}

TEST_F(NameMatchEditTest, AnUnknownNameIsRefusedAndTheCellShowsTheOldBone)
{
    ASSERT_TRUE(model->AssignBone(9, "rig:LeftArm"));
    QLineEdit* editor = OpenEditor(9);
    ASSERT_NE(editor, nullptr);
    ModalAnswerer answer(QMessageBox::Ok);
    Type(editor, "rig:NoSuchBone");
    QTest::qWait(30);
    EXPECT_EQ(answer.titles, QStringList {"Unknown Bone"});
    EXPECT_EQ(model->GetAssignedBone(9), "rig:LeftArm");
    EXPECT_EQ(BoneShown(9), "rig:LeftArm");
}

TEST_F(NameMatchEditTest, EscapeKeepsTheBoneAndAnEmptyNameClearsIt)
{
    ASSERT_TRUE(model->AssignBone(9, "rig:LeftArm"));
    QLineEdit* editor = OpenEditor(9);
    ASSERT_NE(editor, nullptr);
    editor->setText("rig:RightArm");
    QTest::keyClick(editor, Qt::Key_Escape);
    QTest::qWait(20);
    EXPECT_EQ(model->GetAssignedBone(9), "rig:LeftArm");
    EXPECT_EQ(BoneShown(9), "rig:LeftArm");

    editor = OpenEditor(9);
    ASSERT_NE(editor, nullptr);
    Type(editor, "");
    EXPECT_EQ(model->GetAssignedBone(9), "");
}

TEST_F(NameMatchEditTest, GroupRowsAreNotEditedAndDeleteClearsANodeRow)
{
    Tree()->setCurrentItem(widget->GetGroupRow("Spine"));
    QTest::keyClick(Tree(), Qt::Key_F2);
    EXPECT_FALSE(Tree()->IsEditing());

    ASSERT_TRUE(model->AssignBone(9, "rig:LeftArm"));
    Tree()->setCurrentItem(Row(9));
    QTest::keyClick(Tree(), Qt::Key_Delete);
    EXPECT_EQ(model->GetAssignedBone(9), "");
}

// ---- the completer ----

class CompleterTest : public NameMatchTest
{
protected:
    // The bones the completer offers for what was typed, as they would be inserted.
    static QStringList Offered(QCompleter* completer, const QString& typed)
    {
        completer->setCompletionPrefix(typed);
        QStringList bones;
        for (int row = 0; row < completer->completionCount(); ++row)
        {
            completer->setCurrentRow(row);
            bones << completer->currentCompletion();
        }
        return bones;
    }
};

TEST_F(CompleterTest, FiltersBySubstringIgnoringCase)
{
    QObject owner;
    QCompleter* completer = CompleterWidget::CreateBoneCompleter(&hub, model, 9, &owner);
    EXPECT_EQ(Offered(completer, "ARM"),
              QStringList({"rig:LeftArm", "rig:LeftForeArm", "rig:RightArm", "rig:RightForeArm"}));
    EXPECT_EQ(Offered(completer, "foot"), QStringList({"rig:LeftFoot", "rig:RightFoot"}));
    EXPECT_TRUE(Offered(completer, "tail").isEmpty());
    EXPECT_EQ(Offered(completer, "").size(), hub.BoneCount());
}

TEST_F(CompleterTest, BonesOfOtherNodesAreOfferedButMarked)
{
    ASSERT_TRUE(model->AssignBone(12, "rig:RightArm"));
    QObject owner;
    QCompleter* forLeft = CompleterWidget::CreateBoneCompleter(&hub, model, 9, &owner);
    forLeft->setCompletionPrefix("rightarm");
    ASSERT_EQ(forLeft->completionCount(), 1);
    const QModelIndex marked = forLeft->completionModel()->index(0, 0);
    EXPECT_EQ(marked.data(Qt::DisplayRole).toString(), "rig:RightArm  (used by RightArm)");
    EXPECT_EQ(marked.data(CompleterWidget::BoneRole).toString(), "rig:RightArm");
    EXPECT_EQ(forLeft->currentCompletion(), "rig:RightArm");

    // The node's own bone is not "used by another node".
    QCompleter* forRight = CompleterWidget::CreateBoneCompleter(&hub, model, 12, &owner);
    forRight->setCompletionPrefix("rightarm");
    EXPECT_EQ(forRight->completionModel()->index(0, 0).data(Qt::DisplayRole).toString(), "rig:RightArm");
}

TEST_F(CompleterTest, ReturnAcceptsTheTypedName)
{
    CompleterWidget dialog(nullptr, &hub, model, 9);
    dialog.show();
    dialog.GetLineEdit()->setText(" rig:LeftArm ");
    QTest::keyClick(dialog.GetLineEdit(), Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.GetText(), "rig:LeftArm");
}

TEST_F(CompleterTest, ChangeAssignedBoneGoesThroughTheDialog)
{
    ASSERT_TRUE(model->AssignBone(9, "rig:LeftForeArm"));
    Pick(Row(9));
    QString startText;
    ModalScript script({[&](QWidget* modal) {
                            auto* dialog = qobject_cast<CompleterWidget*>(modal);
                            ASSERT_NE(dialog, nullptr);
                            startText = dialog->GetText();
                            dialog->GetLineEdit()->setText("rig:LeftArm");
                            dialog->accept();
                        },
                        ModalScript::Click(QMessageBox::Yes)});
    widget->ShowAutoCompletion();
    EXPECT_EQ(startText, "rig:LeftForeArm");
    EXPECT_EQ(script.Left(), 0);
    EXPECT_EQ(model->GetAssignedBone(9), "rig:LeftArm");

    // Cancel leaves it alone.
    ModalScript cancel({[](QWidget* modal) { qobject_cast<QDialog*>(modal)->reject(); }});
    widget->ShowAutoCompletion();
    EXPECT_EQ(model->GetAssignedBone(9), "rig:LeftArm");
}
} // namespace
