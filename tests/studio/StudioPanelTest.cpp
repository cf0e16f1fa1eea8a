// The panel inside Zelkin Studio as an animator works with it: a part picked while a bone is selected, whole groups
// and views cleared and undone, and the status bar.
#include <QAction>
#include <QMenu>
#include <QStatusBar>
#include <QTest>

#include <zelkin/BoneCatalogue.h>

#include "DiagramWidget.h"
#include "ModalAnswerer.h"
#include "NameMatchTreeWidget.h"
#include "NameMatchWidget.h"
#include "PartItem.h"
#include "StudioFixture.h"

namespace
{
const int kReference = BoneCatalogue::NodeId("Reference");
const int kLeftHand = BoneCatalogue::NodeId("LeftHand");

class StudioPanelTest : public StudioFixture
{
protected:
    void SetUp() override
    {
        StudioFixture::SetUp();
        ASSERT_TRUE(window->OpenSkeleton(Mixamo()));
        matched = Current().GetBoneNames();
    }

    DiagramWidget& Figure() { return *window->GetTool()->GetDiagramWidget(); }
    NameMatchWidget& Names() { return *window->GetTool()->GetNameMatchWidget(); }

    void ClickOn(int nodeId)
    {
        window->GetTool()->setCurrentViewTab(CharacterTool::FigurePage);
        QApplication::processEvents();
        const QGraphicsItem* item = Figure().GetPartItem(nodeId);
        const QPoint at = Figure().mapFromScene(item->sceneBoundingRect().center());
        QTest::mouseClick(Figure().viewport(), Qt::LeftButton, Qt::NoModifier, at);
    }

    // Runs a context menu entry of the figure, on the part of that node (or on none).
    void TriggerFigureEntry(const QString& entry, int nodeId = -1)
    {
        std::unique_ptr<QMenu> menu = Figure().CreateContextMenu(nodeId < 0 ? nullptr : Figure().GetPartItem(nodeId));
        for (QAction* action : menu->actions())
        {
            if (action->text() == entry)
            {
                ASSERT_TRUE(action->isEnabled()) << entry.toStdString();
                action->trigger();
                return;
            }
        }
        FAIL() << "no entry " << entry.toStdString();
    }

    QStringList matched;
};

TEST_F(StudioPanelTest, ALeftClickOnAnUnassignedPartKeepsTheSceneSelectionForAssigningIt)
{
    const QString unmapped = QStringLiteral("mixamorig:HeadTop_End");
    ASSERT_FALSE(Current().IsAssigned(kReference));
    ASSERT_EQ(Current().FindNode(unmapped), -1);
    ASSERT_TRUE(Hub().SelectBones({unmapped}));

    ClickOn(kReference);
    EXPECT_EQ(Model().GetEditedPart(), kReference);
    EXPECT_EQ(GetScene().Selection(), QStringList {unmapped});
    TriggerFigureEntry(QStringLiteral("Assign Selected Bone"), kReference);
    EXPECT_EQ(Current().GetBone(kReference), unmapped);

    // A part with a bone still selects it in the scene.
    ClickOn(kLeftHand);
    EXPECT_EQ(GetScene().Selection(), QStringList {QStringLiteral("mixamorig:LeftHand")});
}

TEST_F(StudioPanelTest, ClearingAGroupAViewOrEverythingIsOneUndoableStepEach)
{
    QUndoStack& stack = Session().GetUndoStack();
    const int start = stack.count();

    // The name match tree's "Clear" on a group row.
    Names().GetTree()->setCurrentItem(Names().GetGroupRow(QStringLiteral("Left Hand")));
    Names().ClearSelectedPart();
    EXPECT_FALSE(Current().IsAssigned(BoneCatalogue::NodeId("LeftHandIndex1")));
    EXPECT_EQ(stack.count(), start + 1);
    window->OnUndo();
    EXPECT_EQ(Current().GetBoneNames(), matched);

    // The figure's "Clear All in View" on the full body, then its "Clear All".
    window->GetTool()->setCurrentViewTab(CharacterTool::FigurePage);
    TriggerFigureEntry(QStringLiteral("Clear All in View"));
    EXPECT_FALSE(Current().IsAssigned(kLeftHand));
    EXPECT_TRUE(Current().IsAssigned(BoneCatalogue::NodeId("LeftHandIndex1")));
    TriggerFigureEntry(QStringLiteral("Clear All"));
    EXPECT_EQ(Current().AssignedCount(), 0);
    EXPECT_EQ(stack.count(), start + 2);
    window->OnUndo();
    EXPECT_TRUE(Current().IsAssigned(BoneCatalogue::NodeId("LeftHandIndex1")));
    EXPECT_FALSE(Current().IsAssigned(kLeftHand));
    window->OnUndo();
    EXPECT_EQ(Current().GetBoneNames(), matched);
    EXPECT_EQ(Model().GetValidationState(), Valid);
}

TEST_F(StudioPanelTest, TheStatusBarShowsTheCurrentCharacterizationsLastOperation)
{
    ASSERT_TRUE(Model().ClearNode(kLeftHand));
    const QString cleared = QStringLiteral("Unregistered node: mixamorig:LeftHand");
    EXPECT_EQ(window->statusBar()->currentMessage(), cleared);
    ASSERT_TRUE(window->GetTool()->CreateCharacterization(QStringLiteral("Second")));
    EXPECT_EQ(window->statusBar()->currentMessage(), QStringLiteral("No previous operation."));
    ASSERT_TRUE(Model().AssignBone(kLeftHand, QStringLiteral("mixamorig:LeftHand")));
    EXPECT_EQ(window->statusBar()->currentMessage(), QStringLiteral("Assigned node: mixamorig:LeftHand"));
    ASSERT_TRUE(Model().SetCurrentCharacterization(0));
    EXPECT_EQ(window->statusBar()->currentMessage(), cleared);
    EXPECT_EQ(window->GetTool()->statusTip(), cleared);
}

} // namespace
