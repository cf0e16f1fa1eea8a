// The figure page: views and arrows, parts against the model, clicks and their refusals, the context menu's
// enabling rules, the assignment questions and the inversion markers.
#include <memory>

#include <QGraphicsPixmapItem>
#include <QGraphicsSceneHoverEvent>
#include <QApplication>
#include <QMenu>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QTest>

#include <gtest/gtest.h>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/CharacterTool.h>
#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationModel.h>
#include <zelkin/ResourceBridge.h>

#include "DiagramWidget.h"
#include "FigureLayout.h"
#include "InversionItem.h"
#include "ModalAnswerer.h"
#include "PartItem.h"
#include "PictureCache.h"
#include "TestHub.h"
#include "TestScenes.h"

namespace
{
QString Rig(int nodeId)
{
    return QStringLiteral("rig:") + QLatin1String(BoneCatalogue::NodeName(nodeId));
}

class DiagramTest : public testing::Test
{
protected:
    void SetUp() override
    {
        testscenes::AddHandMadeTPose(hub);
        tool = std::make_unique<CharacterTool>(false, "", "", &host, &hub);
        model = tool->GetModel();
        ASSERT_NE(model, nullptr);
        hub.UpdateCharacterList({Characterization::DefaultName()}); // the host has the character
        widget = std::make_unique<DiagramWidget>(nullptr, tool->GetBridge(), &hub, model, tool.get());
        widget->resize(FigureLayout::BaseImageSize);
        widget->show();
    }

    void MapRequired()
    {
        for (int nodeId : BoneCatalogue::RequiredNodes())
            ASSERT_TRUE(model->AssignBone(nodeId, Rig(nodeId)));
    }

    // A left click in the middle of an item, as the user makes it.
    void ClickOn(QGraphicsItem* item) { ClickOn(*widget, item); }
    static void ClickOn(DiagramWidget& figure, QGraphicsItem* item)
    {
        const QPoint at = figure.mapFromScene(item->sceneBoundingRect().center());
        QTest::mouseClick(figure.viewport(), Qt::LeftButton, Qt::NoModifier, at);
    }

    PartItem* Arrow(int view, int targetView)
    {
        const std::vector<FigureLayout::ArrowRecord>& records = FigureLayout::Views()[view].arrows;
        for (size_t i = 0; i < records.size(); ++i) {
            if (records[i].targetView == targetView)
                return widget->GetArrowItems(view)[i];
        }
        return nullptr;
    }

    // Each entry's text with whether it is enabled; separators left out.
    QMap<QString, bool> MenuEntries(PartItem* underCursor)
    {
        QMap<QString, bool> entries;
        std::unique_ptr<QMenu> menu = widget->CreateContextMenu(underCursor);
        for (QAction* action : menu->actions()) {
            if (!action->isSeparator())
                entries.insert(action->text(), action->isEnabled());
        }
        return entries;
    }

    void Trigger(PartItem* underCursor, const QString& entry)
    {
        std::unique_ptr<QMenu> menu = widget->CreateContextMenu(underCursor);
        for (QAction* action : menu->actions()) {
            if (action->text() == entry)
                action->trigger();
        }
    }

    QWidget host;
    TestHub hub;
    std::unique_ptr<CharacterTool> tool;
    CharacterizationModel* model = nullptr;
    std::unique_ptr<DiagramWidget> widget;
};
} // namespace

// ---- views and arrows ----

TEST_F(DiagramTest, StartsOnTheFullBodyWithEveryPartInPlace)
{
    EXPECT_EQ(widget->GetCurrentView(), FigureLayout::FullBodyView);
    EXPECT_EQ(widget->styleSheet(), "background:rgb(68, 68, 68)");
    EXPECT_GE(widget->minimumHeight(), FigureLayout::BaseImageSize.height());
    for (const FigureLayout::ViewRecord& view : FigureLayout::Views()) {
        EXPECT_EQ(widget->GetBaseItem(view.index)->isVisible(), view.index == 0);
        EXPECT_FALSE(widget->GetBaseItem(view.index)->pixmap().isNull());
        for (const FigureLayout::PartRecord& part : view.parts) {
            PartItem* item = widget->GetPartItem(part.nodeId);
            ASSERT_NE(item, nullptr);
            EXPECT_EQ(item->pos(), QPointF(part.placement.topLeft()));
            EXPECT_EQ(item->isVisible(), view.index == 0);
            EXPECT_FALSE(item->GetPicture().isNull());
        }
    }
    EXPECT_EQ(widget->GetPartItem(41), nullptr);
    EXPECT_EQ(widget->GetPartItem(BoneCatalogue::NodeCount), nullptr);
    EXPECT_FALSE(widget->GetInversionItem(3)->isVisible());
    EXPECT_TRUE(widget->GetStatusItem()->isVisible());
    // The neck and spine parts share one picture yet each node has its own item.
    EXPECT_NE(widget->GetPartItem(32), widget->GetPartItem(33));
    EXPECT_EQ(widget->GetPartItem(32)->GetImageBase(), widget->GetPartItem(33)->GetImageBase());
}

TEST_F(DiagramTest, TheFigureDrawsTheBridgesPicturesOrLoadsItsOwn)
{
    QTemporaryDir configuration;
    ResourceBridge bridge(QDir(), QDir(configuration.path()));
    DiagramWidget figure(nullptr, &bridge, &hub, model, nullptr);
    ASSERT_TRUE(bridge.GetPictures().Contains(QStringLiteral("BodyGUI_Base.png")));
    EXPECT_EQ(figure.GetBaseItem(0)->pixmap().cacheKey(),
              bridge.GetPictures().Get(QStringLiteral("BodyGUI_Base.png")).cacheKey());
    DiagramWidget alone(nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_FALSE(alone.GetBaseItem(0)->pixmap().isNull());
    EXPECT_FALSE(alone.GetPartItem(1)->GetPicture().isNull());
}

TEST_F(DiagramTest, ArrowsLeadToTheirViewsAndBackEvenWhenLocked)
{
    MapRequired();
    model->SetEditMode(true);
    ASSERT_TRUE(model->IsLocked());
    ModalAnswerer answer(QMessageBox::Ok);
    ClickOn(Arrow(0, 3));
    EXPECT_EQ(widget->GetCurrentView(), 3);
    EXPECT_TRUE(widget->GetPartItem(16)->isVisible());
    EXPECT_FALSE(widget->GetPartItem(1)->isVisible());
    EXPECT_FALSE(widget->GetBaseItem(0)->isVisible());
    ClickOn(Arrow(3, 0));
    EXPECT_EQ(widget->GetCurrentView(), 0);
    EXPECT_TRUE(widget->GetPartItem(1)->isVisible());
    EXPECT_EQ(answer.Count(), 0);
    EXPECT_EQ(Arrow(0, 1)->GetToolTip(), "To Left Hands View");
}

// ---- parts follow the model ----

TEST_F(DiagramTest, PartsArrowsAndStatusShowTheModelsStates)
{
    MapRequired();
    ASSERT_TRUE(model->AssignBone(16, Rig(16)));
    for (int nodeId = 0; nodeId < BoneCatalogue::NodeCount; ++nodeId) {
        if (PartItem* item = widget->GetPartItem(nodeId)) {
            EXPECT_EQ(item->GetState(), model->GetNodeState(nodeId)) << nodeId;
        }
    }
    EXPECT_EQ(widget->GetPartItem(3)->GetState(), 1);
    EXPECT_EQ(widget->GetPartItem(3)->GetToolTip(), "LeftLeg\nrig:LeftLeg");
    EXPECT_EQ(widget->GetPartItem(170)->GetToolTip(), "LeftShoulderExtra");
    EXPECT_EQ(Arrow(0, 3)->GetState(), model->GetNodeState(16));
    EXPECT_EQ(Arrow(0, 1)->GetState(), 0);
    EXPECT_EQ(widget->GetStatusItem()->GetState(), model->GetValidationState());
    EXPECT_FALSE(widget->GetPartItem(3)->IsDimmed());

    ASSERT_TRUE(model->ClearNode(15));
    EXPECT_EQ(widget->GetPartItem(15)->GetState(), 0);
    EXPECT_EQ(widget->GetStatusItem()->GetState(), Error);
    EXPECT_TRUE(widget->GetStatusItem()->GetToolTip().contains("Missing required bones."));
}

TEST_F(DiagramTest, ALockedCharacterizationIsDimmed)
{
    MapRequired();
    model->SetEditMode(true);
    ASSERT_TRUE(model->IsLocked());
    EXPECT_TRUE(widget->GetPartItem(3)->IsDimmed());
    EXPECT_FALSE(Arrow(0, 1)->IsDimmed());
}

// ---- clicking parts ----

TEST_F(DiagramTest, AClickEditsThePartAndSelectsItsBoneInTheHost)
{
    MapRequired();
    ClickOn(widget->GetPartItem(3));
    EXPECT_EQ(model->GetEditedPart(), 3);
    EXPECT_EQ(hub.selection, QStringList {"rig:LeftLeg"});
    EXPECT_EQ(widget->GetPartItem(3)->GetSelectionMode(), 2);
    EXPECT_TRUE(widget->GetPartItem(3)->isSelected());
    EXPECT_TRUE(widget->GetInversionItem(3)->isVisible());

    // Another view's node: the figure moves there and lets go of the knee.
    model->SetEditedPart(60, false);
    EXPECT_EQ(widget->GetCurrentView(), 1);
    EXPECT_EQ(widget->GetPartItem(60)->GetSelectionMode(), 2);
    EXPECT_EQ(widget->GetPartItem(3)->GetSelectionMode(), 0);
    EXPECT_FALSE(widget->GetInversionItem(3)->isVisible());

    // The inline roll bones have no part: nothing is selected and the view stays.
    model->SetEditedPart(41, false);
    EXPECT_EQ(widget->GetCurrentView(), 1);
    EXPECT_EQ(widget->GetPartItem(60)->GetSelectionMode(), 0);
}

TEST_F(DiagramTest, ClicksAreRefusedOnALockedOrUncreatedCharacterization)
{
    MapRequired();
    model->SetEditMode(true);
    {
        ModalAnswerer answer(QMessageBox::Ok);
        ClickOn(widget->GetPartItem(3));
        EXPECT_EQ(answer.titles, QStringList {"Characterization Locked"});
        EXPECT_EQ(answer.texts,
                  QStringList {"The current characterization is locked.\nYou must unlock it before you can edit its "
                               "bone mappings."});
    }
    EXPECT_EQ(model->GetEditedPart(), CharacterizationModel::NoPart);

    // A host that has made no character yet: the panel's working characterization is the host's placeholder.
    TestHub fresh;
    testscenes::AddHandMadeTPose(fresh);
    QWidget freshHost;
    CharacterTool freshTool(false, "", "", &freshHost, &fresh);
    freshHost.resize(400, 800);
    freshHost.show();
    DiagramWidget& figure = *freshTool.GetDiagramWidget();
    EXPECT_EQ(fresh.GetCurrentCharacterNodeName(), fresh.GetDefaultCharacterNodeName());
    {
        ModalAnswerer answer(QMessageBox::Ok);
        ClickOn(figure, figure.GetPartItem(3));
        EXPECT_EQ(answer.titles, QStringList {"Characterization Not Created"});
        EXPECT_EQ(answer.texts,
                  QStringList {"You must create a new characterization before you can edit its bone mappings."});
    }
    EXPECT_EQ(freshTool.GetModel()->GetEditedPart(), CharacterizationModel::NoPart);
    // Once the host has it, the same click edits the node.
    fresh.UpdateCharacterList({Characterization::DefaultName()});
    EXPECT_EQ(fresh.GetCurrentCharacterNodeName(), Characterization::DefaultName());
    ClickOn(figure, figure.GetPartItem(3));
    EXPECT_EQ(freshTool.GetModel()->GetEditedPart(), 3);
}

// The colour in the middle of a window's right edge, inside its frame: its background.
QColor Background(QWidget& window)
{
    const QImage shot = window.grab().toImage();
    return QColor(shot.pixel(shot.width() - 4, shot.height() / 2));
}

TEST_F(DiagramTest, ItsMenuTooltipsAndBoxesLookLikeTheApplicationsNotLikeTheFigure)
{
    // The panel's own figure, inside its page: a style sheet of the figure would reach what hangs on it.
    host.resize(tool->sizeHint());
    host.show();
    DiagramWidget& figure = *tool->GetDiagramWidget();
    const QColor figureBackground(68, 68, 68);
    ASSERT_EQ(Background(*figure.viewport()), figureBackground);

    QMenu plainMenu;
    plainMenu.addAction(QStringLiteral("Clear"));
    std::unique_ptr<QMenu> menu = figure.CreateContextMenu(figure.GetPartItem(3));
    EXPECT_EQ(Background(*menu), Background(plainMenu));

    const QPoint at = figure.mapFromScene(figure.GetPartItem(11)->sceneBoundingRect().center());
    QTest::mouseMove(figure.viewport(), at);
    QWidget* tip = nullptr;
    ASSERT_TRUE(QTest::qWaitFor([&] {
        for (QWidget* window : QApplication::topLevelWidgets())
            tip = window->inherits("QTipLabel") && window->isVisible() ? window : tip;
        return tip != nullptr;
    }));
    EXPECT_NE(Background(*tip), figureBackground);
    EXPECT_EQ(Background(*tip), QApplication::palette().color(QPalette::ToolTipBase));

    MapRequired();
    model->SetEditMode(true);
    QColor box;
    QTimer::singleShot(50, [&box] {
        if (QWidget* window = QApplication::activeModalWidget())
        {
            box = Background(*window);
            QMetaObject::invokeMethod(window, "reject", Qt::QueuedConnection);
        }
    });
    ClickOn(figure, figure.GetPartItem(3));
    EXPECT_EQ(box, QApplication::palette().color(QPalette::Window));
}

TEST_F(DiagramTest, TheHostsSelectionBecomesTheEditedPart)
{
    MapRequired();
    hub.selection = {"rig:RightHand"};
    emit hub.selectionChanged();
    EXPECT_EQ(model->GetEditedPart(), 14);
    EXPECT_TRUE(widget->GetPartItem(14)->isSelected());
    hub.selection = {"not-a-mapped-bone"};
    emit hub.selectionChanged();
    EXPECT_EQ(model->GetEditedPart(), 14);
}

// ---- the context menu ----

TEST_F(DiagramTest, MenuEntriesFollowTheItemUnderTheCursor)
{
    MapRequired();
    hub.selection = {"rig:LeftLeg"};
    QMap<QString, bool> entries = MenuEntries(widget->GetPartItem(8));
    EXPECT_EQ(entries.keys(), QStringList({"Assign Selected Bone", "Change Assigned Bone...", "Clear", "Clear All",
                                           "Clear All in View", "Invert Joint", "Name Match View"}));
    for (auto entry = entries.begin(); entry != entries.end(); ++entry)
        EXPECT_EQ(entry.value(), entry.key() != "Invert Joint") << entry.key().toStdString();
    for (int hinge : {3, 6, 10, 13})
        EXPECT_TRUE(MenuEntries(widget->GetPartItem(hinge)).value("Invert Joint")) << hinge;
    EXPECT_FALSE(MenuEntries(widget->GetPartItem(2)).value("Invert Joint"));

    // Arrows and the status element take no bone, but Clear still works on an arrow's node.
    for (PartItem* notANode : {Arrow(0, 1), widget->GetStatusItem()}) {
        entries = MenuEntries(notANode);
        EXPECT_FALSE(entries.value("Assign Selected Bone"));
        EXPECT_FALSE(entries.value("Change Assigned Bone..."));
        EXPECT_TRUE(entries.value("Clear"));
    }
    entries = MenuEntries(nullptr);
    EXPECT_FALSE(entries.value("Clear"));
    EXPECT_TRUE(entries.value("Clear All in View"));
    hub.selection.clear();
    EXPECT_FALSE(MenuEntries(widget->GetPartItem(8)).value("Assign Selected Bone"));

    model->SetEditMode(true);
    entries = MenuEntries(widget->GetPartItem(3));
    for (auto entry = entries.begin(); entry != entries.end(); ++entry)
        EXPECT_EQ(entry.value(), entry.key() == "Name Match View") << entry.key().toStdString();
}

TEST_F(DiagramTest, CancellingTheBoneInUseQuestionLeavesBothNodes)
{
    MapRequired();
    hub.selection = {"rig:LeftLeg"};
    {
        ModalAnswerer answer(QMessageBox::Cancel);
        Trigger(widget->GetPartItem(18), "Assign Selected Bone");
        EXPECT_EQ(answer.texts, QStringList {"Bone \"rig:LeftLeg\" is being used for the \"LeftLeg\".\nClear?"});
    }
    EXPECT_EQ(model->GetAssignedBone(18), "");
    EXPECT_EQ(model->GetAssignedBone(3), "rig:LeftLeg");
    {
        ModalAnswerer answer(QMessageBox::Ok);
        Trigger(widget->GetPartItem(18), "Assign Selected Bone");
        EXPECT_EQ(answer.Count(), 1);
    }
    EXPECT_EQ(model->GetAssignedBone(18), "rig:LeftLeg");
    EXPECT_EQ(model->GetAssignedBone(3), "");
    EXPECT_EQ(model->GetEditedPart(), 18);
    EXPECT_EQ(widget->GetCurrentView(), 7);
}

TEST_F(DiagramTest, ClearingByItemViewAndAll)
{
    MapRequired();
    ASSERT_TRUE(model->AssignBone(16, Rig(16)));
    ASSERT_TRUE(model->AssignBone(21, Rig(16).replace("Toe", "Finger")));
    Trigger(Arrow(0, 1), "Clear"); // the arrow's node: the left finger base
    EXPECT_EQ(model->GetAssignedBone(21), "");
    Trigger(widget->GetPartItem(2), "Clear");
    EXPECT_EQ(model->GetAssignedBone(2), "");
    Trigger(nullptr, "Clear All in View");
    EXPECT_EQ(model->GetAssignedBone(1), "");
    EXPECT_EQ(model->GetAssignedBone(15), "");
    EXPECT_EQ(model->GetAssignedBone(16), Rig(16)); // the toe base lives in the foot view
    Trigger(nullptr, "Clear All");
    EXPECT_EQ(model->GetAssignedBone(16), "");
}

TEST_F(DiagramTest, InvertingAKneeShowsOnItsMarker)
{
    MapRequired();
    InversionItem* marker = widget->GetInversionItem(6);
    EXPECT_FALSE(marker->IsInverted());
    Trigger(widget->GetPartItem(6), "Invert Joint");
    EXPECT_TRUE(model->IsInverted(IDCCHub::RightKnee));
    EXPECT_TRUE(MenuEntries(widget->GetPartItem(6)).contains("Invert Joint"));
    model->Validate();
    EXPECT_TRUE(marker->IsInverted());

    // Hovering a hinge shows its marker for as long as the pointer stays.
    QGraphicsSceneHoverEvent enter(QEvent::GraphicsSceneHoverEnter);
    widget->scene()->sendEvent(widget->GetPartItem(6), &enter);
    EXPECT_TRUE(marker->isVisible());
    QGraphicsSceneHoverEvent leave(QEvent::GraphicsSceneHoverLeave);
    widget->scene()->sendEvent(widget->GetPartItem(6), &leave);
    EXPECT_FALSE(marker->isVisible());
}

TEST_F(DiagramTest, TheLastEntryAsksForTheNameMatchPage)
{
    QSignalSpy spy(widget.get(), &DiagramWidget::ViewTabRequested);
    Trigger(nullptr, "Name Match View");
    ASSERT_EQ(spy.count(), 1);
    EXPECT_EQ(spy[0][0].toInt(), 1);
}
