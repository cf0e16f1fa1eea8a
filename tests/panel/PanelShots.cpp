// Renders the panel with the corpus's Mixamo rig mapped: both pages and each of its dialogs, for looking at by eye.
// usage: zelkin_panel_shots OUTPUT_FOLDER
#include <cstdio>
#include <functional>

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTimer>
#include <QVBoxLayout>

#include <zelkin/CharacterTool.h>
#include <zelkin/ClipTreeWidget.h>
#include <zelkin/CharacterizationModel.h>
#include <zelkin/ConfigDocument.h>
#include <zelkin/MirrorMatcher.h>
#include <zelkin/ResourceBridge.h>
#include <zelkin/UserConfiguration.h>

#include "TestHub.h"
#include "TestScenes.h"

namespace
{
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
} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    if (argc < 2)
    {
        std::fprintf(stderr, "usage: zelkin_panel_shots OUTPUT_FOLDER\n");
        return 2;
    }
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
    model->AutoMatch();
    model->SetEditedPart(10, true); // the left forearm
    MirrorMatcher pairs({{"_L", "_R"}, {"Lf", "Rt"}});
    pairs.Save(tool->GetBridge()->GetConfiguration().Document());

    host.resize(tool->sizeHint());
    host.show();
    QApplication::processEvents();
    bool ok = host.grab().save(out.filePath("panel_figure.png"));
    tool->setCurrentViewTab(CharacterTool::NameMatchPage);
    QApplication::processEvents();
    ok = host.grab().save(out.filePath("panel_name_match.png")) && ok;
    tool->setCurrentViewTab(CharacterTool::FigurePage);

    hub.selection = QStringList({"mixamorig:LeftArm"});
    ok = ShootModal([tool] { tool->ShowAutoMatch(); }, out.filePath("panel_apply_template.png")) && ok;
    ok = ShootModal([tool] { tool->ShowExtractTemplate(); }, out.filePath("panel_save_template.png")) && ok;
    ok = ShootModal([tool] { tool->ShowConfigMirror(); }, out.filePath("panel_mirror.png")) && ok;
    ok = ShootModal([tool] { tool->OnSave(); }, out.filePath("panel_save_file.png")) && ok;

    tool->SaveKst(appData.filePath("walk.kst"), 0, false);
    tool->SaveKst(appData.filePath("run.kst"), 1, false);
    ClipTreeWidget clips(*tool->GetBridge());
    clips.AddDirectoryPath(appData.path());
    clips.resize(320, 200);
    clips.show();
    QApplication::processEvents();
    ok = clips.grab().save(out.filePath("panel_clips.png")) && ok;
    return ok ? 0 : 1;
}
