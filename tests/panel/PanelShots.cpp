// Renders the panel with the corpus's Mixamo rig mapped: both pages, the figure's context menu, a tooltip and a
// message box raised from the figure, and each of the panel's dialogs, for looking at by eye.
// usage: zelkin_panel_shots OUTPUT_FOLDER [--dark]
// --dark gives the application a dark palette first, as a host with a dark theme does.
#include <algorithm>
#include <cstdio>
#include <functional>

#include <QApplication>
#include <QDir>
#include <QMenu>
#include <QMouseEvent>
#include <QTreeWidgetItem>
#include <QTemporaryDir>
#include <QTimer>
#include <QVBoxLayout>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/CharacterTool.h>
#include <zelkin/ClipTreeWidget.h>
#include <zelkin/CharacterizationModel.h>
#include <zelkin/ConfigDocument.h>
#include <zelkin/MirrorMatcher.h>
#include <zelkin/ResourceBridge.h>
#include <zelkin/UserConfiguration.h>

#include "DiagramWidget.h"
#include "NameMatchTreeWidget.h"
#include "NameMatchWidget.h"
#include "PartItem.h"
#include "TestHub.h"
#include "TestScenes.h"

namespace
{
QPalette DarkPalette()
{
    QPalette palette;
    const QColor window(45, 45, 48);
    const QColor base(30, 30, 32);
    const QColor text(232, 232, 232);
    const QColor disabledText(160, 160, 160);
    for (QPalette::ColorRole role : {QPalette::Window, QPalette::Button, QPalette::Mid})
        palette.setColor(role, window);
    for (QPalette::ColorRole role : {QPalette::Base, QPalette::AlternateBase})
        palette.setColor(role, base);
    palette.setColor(QPalette::AlternateBase, QColor(38, 38, 41));
    for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::BrightText})
        palette.setColor(role, text);
    palette.setColor(QPalette::ToolTipBase, QColor(60, 60, 64));
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, disabledText);
    palette.setColor(QPalette::Highlight, QColor(38, 110, 190));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Light, QColor(75, 75, 80));
    palette.setColor(QPalette::Midlight, QColor(60, 60, 64));
    palette.setColor(QPalette::Dark, QColor(20, 20, 22));
    palette.setColor(QPalette::Shadow, Qt::black);
    for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, disabledText);
    palette.setColor(QPalette::Disabled, QPalette::Light, window);
    return palette;
}

// Opens a modal window through `open`, saves a picture of it once it has been laid out, and closes it.
bool ShootModal(const std::function<void()>& open, const QString& file)
{
    bool saved = false;
    QTimer::singleShot(300, [&saved, file] {
        QWidget* window = QApplication::activeModalWidget();
        if (window == nullptr)
            return;
        saved = window->grab().save(file);
        QMetaObject::invokeMethod(window, "reject", Qt::QueuedConnection);
    });
    open();
    if (!saved)
        std::fprintf(stderr, "no picture for %s\n", qPrintable(file));
    return saved;
}

void SendMouse(QWidget* widget, QEvent::Type type, const QPoint& at, Qt::MouseButton button)
{
    const Qt::MouseButtons buttons = type == QEvent::MouseButtonPress ? Qt::MouseButtons(button) : Qt::NoButton;
    QMouseEvent event(type, QPointF(at), QPointF(widget->mapToGlobal(at)), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

QPoint PartCentre(DiagramWidget& figure, int nodeId)
{
    return figure.mapFromScene(figure.GetPartItem(nodeId)->sceneBoundingRect().center());
}

bool ShootContextMenu(DiagramWidget& figure, int nodeId, const QString& file)
{
    const std::unique_ptr<QMenu> menu = figure.CreateContextMenu(figure.GetPartItem(nodeId));
    menu->popup(figure.viewport()->mapToGlobal(PartCentre(figure, nodeId)));
    QApplication::processEvents();
    const bool saved = menu->grab().save(file);
    menu->hide();
    return saved;
}

bool ShootToolTip(DiagramWidget& figure, int nodeId, const QString& file)
{
    SendMouse(figure.viewport(), QEvent::MouseMove, PartCentre(figure, nodeId) + QPoint(1, 1), Qt::NoButton);
    QApplication::processEvents();
    for (QWidget* widget : QApplication::topLevelWidgets())
    {
        if (widget->inherits("QTipLabel") && widget->isVisible())
            return widget->grab().save(file);
    }
    std::fprintf(stderr, "no tooltip for %s\n", qPrintable(file));
    return false;
}

// The longest bone name among the mapped ones, and its node.
int NodeWithLongestBone(const CharacterizationModel& model)
{
    int longest = 0;
    for (int nodeId = 1; nodeId < BoneCatalogue::NodeCount; ++nodeId)
    {
        if (model.GetAssignedBone(nodeId).size() > model.GetAssignedBone(longest).size())
            longest = nodeId;
    }
    return longest;
}
} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    if (argc < 2)
    {
        std::fprintf(stderr, "usage: zelkin_panel_shots OUTPUT_FOLDER [--dark]\n");
        return 2;
    }
    if (argc > 2 && QByteArray(argv[2]) == "--dark")
        QApplication::setPalette(DarkPalette());
    const QDir out(QString::fromLocal8Bit(argv[1]));
    QTemporaryDir appData;
    if (!out.mkpath(".") || !appData.isValid())
        return 2;
    qputenv("APPDATA", QFile::encodeName(appData.path()));

    TestHub hub;
    QString error;
    if (!testscenes::LoadSkeleton(ZELKIN_CORPUS_DIR "/skeletons/mixamo_xbot.glb", hub, error))
    {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    QWidget host;
    auto* layout = new QVBoxLayout(&host);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* tool = new CharacterTool(false, qPrintable(appData.path()), "", &host, &hub);
    layout->addWidget(tool);
    CharacterizationModel* model = tool->GetModel();
    hub.UpdateCharacterList({model->GetCurrentCharacterization()->GetName()});
    model->AutoMatch();
    model->SetEditedPart(10, true); // the left forearm
    MirrorMatcher pairs({{"_L", "_R"}, {"Lf", "Rt"}});
    pairs.Save(tool->GetBridge()->GetConfiguration().Document());

    host.resize(tool->sizeHint());
    host.show();
    QApplication::processEvents();
    bool ok = host.grab().save(out.filePath("panel_figure.png"));

    // The figure's own menu, tooltip and message box.
    DiagramWidget& figure = *tool->GetDiagramWidget();
    hub.selection = QStringList({"mixamorig:Spine"});
    ok = ShootContextMenu(figure, 10, out.filePath("panel_figure_menu.png")) && ok;
    ok = ShootToolTip(figure, 11, out.filePath("panel_figure_tooltip.png")) && ok;
    model->SetEditMode(true);
    ok = ShootModal(
             [&figure] {
                 const QPoint at = PartCentre(figure, 3);
                 SendMouse(figure.viewport(), QEvent::MouseButtonPress, at, Qt::LeftButton);
                 SendMouse(figure.viewport(), QEvent::MouseButtonRelease, at, Qt::LeftButton);
             },
             out.filePath("panel_figure_box.png")) &&
         ok;
    ok = ShootContextMenu(figure, 10, out.filePath("panel_figure_menu_locked.png")) && ok; // entries disabled
    model->SetEditMode(false);

    // The property view with the rig's longest bone name, at the panel's narrowest.
    model->SetEditedPart(NodeWithLongestBone(*model), true);
    const int narrow = tool->minimumSizeHint().width();
    host.resize(narrow, std::max(host.height(), host.heightForWidth(narrow)));
    QApplication::processEvents();
    ok = host.grab().save(out.filePath("panel_long_bone_name.png")) && ok;
    host.resize(tool->sizeHint());
    model->SetEditedPart(10, true);

    tool->setCurrentViewTab(CharacterTool::NameMatchPage);
    QApplication::processEvents();
    ok = host.grab().save(out.filePath("panel_name_match.png")) && ok;
    NameMatchWidget& names = *tool->GetNameMatchWidget();
    names.GetGroupRow(QStringLiteral("Base (required)"))->setExpanded(false);
    names.GetTree()->scrollToTop();
    QApplication::processEvents();
    ok = host.grab().save(out.filePath("panel_name_match_groups.png")) && ok;
    tool->setCurrentViewTab(CharacterTool::FigurePage);

    ok = ShootModal([tool] { tool->ShowAutoMatch(); }, out.filePath("panel_apply_template.png")) && ok;
    ok = ShootModal([tool] { tool->ShowExtractTemplate(); }, out.filePath("panel_save_template.png")) && ok;
    ok = ShootModal([tool] { tool->ShowConfigMirror(); }, out.filePath("panel_mirror.png")) && ok;
    ok = ShootModal([tool] { tool->OnSave(); }, out.filePath("panel_save_file.png")) && ok;

    ClipTreeWidget clips(*tool->GetBridge());
    clips.resize(320, 200);
    clips.show();
    QApplication::processEvents();
    ok = clips.grab().save(out.filePath("panel_clips_empty.png")) && ok;
    tool->SaveKst(appData.filePath("walk.kst"), 0, false);
    tool->SaveKst(appData.filePath("run.kst"), 1, false);
    clips.AddDirectoryPath(appData.path());
    QApplication::processEvents();
    ok = clips.grab().save(out.filePath("panel_clips.png")) && ok;
    return ok ? 0 : 1;
}
