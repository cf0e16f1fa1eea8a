// zelkin-studio [FILE]: the characterization panel at work on a skeleton or a project.
#include <cstdio>

#include <QApplication>
#include <QBuffer>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QSaveFile>
#include <QTimer>

#include <zelkin/CharacterTool.h>

#include "MainWindow.h"

namespace
{
struct Options
{
    QString file;
    QString screenshot;
    QString configurationDirectory;
    QString page;
    QString view;
    QString select;
    bool tPose = false;
};

Options ParseOptions(const QApplication& application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Zelkin Studio: map a skeleton's bones to the Zelkin nodes."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("FILE"),
                                 QStringLiteral("A skeleton (FBX, glTF/GLB, BVH, Collada...) or a project (.zelproj)."),
                                 QStringLiteral("[FILE]"));
    const QCommandLineOption screenshot(QStringLiteral("screenshot"),
                                        QStringLiteral("Save a picture of the window once FILE is open, then exit."),
                                        QStringLiteral("OUT.png"));
    const QCommandLineOption configuration(QStringLiteral("config-dir"),
                                           QStringLiteral("Folder of the configuration, templates and recent files."),
                                           QStringLiteral("DIR"));
    const QCommandLineOption page(QStringLiteral("page"), QStringLiteral("Panel page: figure or names."),
                                  QStringLiteral("PAGE"), QStringLiteral("figure"));
    const QCommandLineOption view(QStringLiteral("view"), QStringLiteral("Viewport: front, side or perspective."),
                                  QStringLiteral("VIEW"), QStringLiteral("front"));
    const QCommandLineOption select(QStringLiteral("select"), QStringLiteral("A bone to select."),
                                    QStringLiteral("BONE"));
    const QCommandLineOption tPose(QStringLiteral("t-pose"),
                                   QStringLiteral("Set the T-pose once FILE is open (Character > Set T-Pose)."));
    parser.addOptions({screenshot, configuration, page, view, select, tPose});
    parser.process(application);
    const QStringList files = parser.positionalArguments();
    return {files.isEmpty() ? QString() : files.first(),
            parser.value(screenshot),
            parser.value(configuration),
            parser.value(page),
            parser.value(view),
            parser.value(select),
            parser.isSet(tPose)};
}

// The picture replaces the file whole or not at all. It is encoded in memory first, so a failing disk meets a plain
// write (the image writer leaks when its device fails), and flushed by hand: commit() does not check the flush it
// makes on closing.
bool SavePicture(QWidget& window, const QString& path)
{
    QByteArray picture;
    QBuffer buffer(&picture);
    QSaveFile file(path);
    return buffer.open(QIODevice::WriteOnly) &&
           window.grab().save(&buffer, QFileInfo(path).suffix().toLatin1().constData()) &&
           file.open(QIODevice::WriteOnly) && file.write(picture) == picture.size() && file.flush() && file.commit();
}

void ApplyViewOptions(MainWindow& window, const Options& options)
{
    window.GetTool()->setCurrentViewTab(options.page == QLatin1String("names") ? CharacterTool::NameMatchPage
                                                                                : CharacterTool::FigurePage);
    SkeletonViewport::ViewMode mode = SkeletonViewport::FrontView;
    if (options.view == QLatin1String("side"))
        mode = SkeletonViewport::SideView;
    else if (options.view == QLatin1String("perspective"))
        mode = SkeletonViewport::PerspectiveView;
    window.GetViewport()->SetViewMode(mode);
    if (options.tPose)
        window.OnSetTPose();
    if (!options.select.isEmpty())
        window.GetSession().GetHub().SelectBones({options.select});
}
} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Zelkin Studio"));
    QApplication::setApplicationVersion(QStringLiteral(ZELKIN_VERSION_TEXT));
    const Options options = ParseOptions(application);

    MainWindow window(options.configurationDirectory);
    window.SetBatchMode(!options.screenshot.isEmpty());
    window.show();
    // A picture of a file is no time to bring back other work.
    if (options.screenshot.isEmpty())
        window.OfferRestore();
    if (!options.file.isEmpty() && !window.OpenFile(options.file) && !options.screenshot.isEmpty())
        return 1;
    ApplyViewOptions(window, options);
    if (options.screenshot.isEmpty())
        return application.exec();

    // Once the window has been laid out and painted.
    int status = 0;
    QTimer::singleShot(500, &window, [&window, &options, &status] {
        if (!SavePicture(window, options.screenshot))
        {
            std::fprintf(stderr, "zelkin-studio: cannot write %s\n", qPrintable(options.screenshot));
            status = 1;
        }
        QApplication::quit();
    });
    application.exec();
    return status;
}
