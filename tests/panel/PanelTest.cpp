// The panel as a host builds it: its pages, their switching, and the hub's menu entries that reach its dialogs.
#include <QAction>
#include <QFileInfo>
#include <QLayout>
#include <QTabBar>
#include <QTabWidget>

#include <zelkin/IDCCHub.h>
#include <zelkin/ResourceBridge.h>

#include "DiagramWidget.h"
#include "ModalScript.h"
#include "NameMatchWidget.h"
#include "PanelFixture.h"
#include "PropertyView.h"

namespace
{

using Panel = MixamoPanel;

TEST_F(Panel, BuildsTheFigureAndNameMatchPagesEachOverItsPropertyView)
{
    QTabWidget* pages = tool->GetPages();
    ASSERT_NE(pages, nullptr);
    ASSERT_EQ(pages->count(), 2);
    EXPECT_EQ(pages->tabText(0), QStringLiteral("Figure"));
    EXPECT_EQ(pages->tabText(1), QStringLiteral("Name Match"));
    EXPECT_FALSE(pages->findChild<QTabBar*>()->isVisibleTo(pages));
    EXPECT_EQ(tool->currentViewTab(), CharacterTool::FigurePage);

    DiagramWidget* figure = tool->GetDiagramWidget();
    NameMatchWidget* names = tool->GetNameMatchWidget();
    EXPECT_EQ(pages->minimumWidth(), 262);
    EXPECT_EQ(pages->minimumHeight(), 2 * figure->minimumHeight());
    EXPECT_EQ(names->minimumHeight(), figure->minimumHeight());
    EXPECT_GE(tool->sizeHint().height(), pages->minimumHeight());

    for (int page = 0; page < 2; ++page)
    {
        QWidget* frame = pages->widget(page);
        EXPECT_TRUE(frame->autoFillBackground());
        EXPECT_EQ(frame->layout()->contentsMargins(), QMargins(1, 1, 1, 1));
        PropertyView* properties = tool->GetPropertyView(page);
        ASSERT_NE(properties, nullptr);
        EXPECT_EQ(properties->parentWidget(), frame);
        EXPECT_EQ(properties->focusPolicy(), Qt::NoFocus);
        // Each view sits above its property view.
        QWidget* view = page == 0 ? static_cast<QWidget*>(figure) : static_cast<QWidget*>(names);
        EXPECT_EQ(frame->layout()->indexOf(view), 0);
        EXPECT_EQ(frame->layout()->indexOf(properties), 1);
    }
    EXPECT_EQ(figure->focusPolicy(), Qt::NoFocus);
    EXPECT_EQ(tool->GetPropertyView(2), nullptr);
    EXPECT_NE(tool->GetBridge(), nullptr);
}

TEST_F(Panel, ViewsSwitchPagesAndOutOfRangePagesAreIgnored)
{
    emit tool->GetDiagramWidget()->ViewTabRequested(CharacterTool::NameMatchPage);
    EXPECT_EQ(tool->currentViewTab(), CharacterTool::NameMatchPage);
    emit tool->GetNameMatchWidget()->ViewTabRequested(CharacterTool::FigurePage);
    EXPECT_EQ(tool->currentViewTab(), CharacterTool::FigurePage);
    tool->setCurrentViewTab(2);
    tool->setCurrentViewTab(-1);
    EXPECT_EQ(tool->currentViewTab(), CharacterTool::FigurePage);
}

TEST_F(Panel, HubMenuEntriesOpenThePanelsDialogs)
{
    model->AutoMatch();
    hub.selection = QStringList({Rig("Hips")});
    ModalScript script({ModalScript::Reject(), ModalScript::Reject(), ModalScript::Reject(), ModalScript::Reject()});
    hub.ShowMapBones();
    hub.ShowConfigureMirrorMatching();
    hub.ShowSaveCharacterization();
    hub.ShowExtractMappingTemplate();
    EXPECT_EQ(script.windowTitles,
              QStringList({"Apply Mapping Template", "Mirror Configuration", "Save Skeleton Definition",
                           "Extract Mapping Template"}));
    EXPECT_EQ(script.Unexpected(), 0);

    // Without a panel the entries do nothing.
    TestHub lonely;
    ModalScript none;
    lonely.ShowMapBones();
    lonely.ShowConfigureMirrorMatching();
    lonely.ShowSaveCharacterization();
    lonely.ShowExtractMappingTemplate();
    EXPECT_TRUE(none.windowTitles.isEmpty());
}

TEST_F(Panel, CommandsOfAnEmptyPanelDoNothing)
{
    TestHub otherHub;
    CharacterTool empty(false, "", "", nullptr, &otherHub);
    EXPECT_EQ(empty.GetBridge(), nullptr);
    EXPECT_EQ(empty.GetPages(), nullptr);
    EXPECT_EQ(empty.currentViewTab(), -1);
    ModalScript script;
    empty.AutoMatch();
    empty.ExtractTemplate();
    empty.ConfigMirror();
    empty.OnSave();
    empty.OnLoad();
    empty.setCurrentViewTab(1);
    EXPECT_FALSE(empty.SaveKst(QStringLiteral("/tmp/never.kst"), 0, false));
    EXPECT_FALSE(empty.LoadFile(QStringLiteral("/tmp/never.zelc")));
    EXPECT_EQ(empty.LoadBinary(QStringLiteral("/tmp/never.zelc")), nullptr);
    otherHub.ShowMapBones(); // not registered: the panel stayed empty
    EXPECT_TRUE(script.windowTitles.isEmpty());
    EXPECT_FALSE(QFileInfo::exists(QStringLiteral("/tmp/never.kst")));
}

TEST_F(Panel, HostActionsAndItsOwnCommandsAnswerWhileThePanelHasTheFocus)
{
    QAction hostAction(QStringLiteral("Host command"));
    hostAction.setShortcut(QKeySequence(Qt::Key_F9));
    tool->AddAction(&hostAction);
    EXPECT_TRUE(tool->actions().contains(&hostAction));
    // A window-wide shortcut would fire while the user types in the host's own windows.
    EXPECT_EQ(hostAction.shortcutContext(), Qt::WidgetWithChildrenShortcut);

    QAction* mirror = nullptr;
    for (QAction* action : tool->actions())
    {
        if (action->text() == QStringLiteral("Mirror Matching"))
            mirror = action;
    }
    ASSERT_NE(mirror, nullptr);
    mirror->trigger();
    EXPECT_TRUE(model->IsMirrorMode());
    EXPECT_TRUE(mirror->isChecked());
    hub.MirrorMatching();
    EXPECT_FALSE(model->IsMirrorMode());
    EXPECT_FALSE(mirror->isChecked());
}

} // namespace
