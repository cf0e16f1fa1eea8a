// The panel as a host opens it: construction with a parent up to the first paint of its figure, with the host
// holding the corpus's 65-bone Mixamo rig. Targets: median at most 150 ms, and at most 60 MB more resident memory
// than the application had before.
#include <cstdio>
#include <fstream>
#include <string>

#include <QApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <zelkin/CharacterTool.h>

#include "DiagramWidget.h"
#include "TestHub.h"
#include "TestScenes.h"

namespace
{
TestHub* gHub = nullptr;

// Resident memory of this process in megabytes.
double ResidentMegabytes()
{
    std::ifstream status("/proc/self/status");
    std::string key;
    while (status >> key)
    {
        double kilobytes = 0;
        if (key == "VmRSS:" && status >> kilobytes)
            return kilobytes / 1024.0;
        status.ignore(1 << 16, '\n');
    }
    return 0;
}

struct PaintWatch : QObject
{
    bool painted = false;
    bool eventFilter(QObject*, QEvent* event) override
    {
        painted = painted || event->type() == QEvent::Paint;
        return false;
    }
};

// Builds the panel in a shown host and returns once its figure has painted.
void OpenPanel(QWidget& host)
{
    auto* tool = new CharacterTool(false, "", "", &host, gHub);
    PaintWatch watch;
    tool->GetDiagramWidget()->viewport()->installEventFilter(&watch);
    host.resize(tool->sizeHint());
    host.show();
    while (!watch.painted)
        QApplication::processEvents(QEventLoop::AllEvents, 5);
    tool->GetDiagramWidget()->viewport()->removeEventFilter(&watch);
}

void BM_PanelUpToFirstPaint(benchmark::State& state)
{
    for (auto _ : state)
    {
        QWidget host;
        OpenPanel(host);
        state.PauseTiming(); // closing the panel is not part of opening it
        host.close();
        QApplication::processEvents();
        state.ResumeTiming();
    }
}
} // namespace

BENCHMARK(BM_PanelUpToFirstPaint)->Unit(benchmark::kMillisecond)->Iterations(10)->Repetitions(5)->ReportAggregatesOnly(true);

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", qgetenv("QT_QPA_PLATFORM").isEmpty() ? "offscreen" : qgetenv("QT_QPA_PLATFORM"));
    QTemporaryDir appData; // a private configuration
    qputenv("APPDATA", QFile::encodeName(appData.path()));
    QApplication app(argc, argv);
    const double bare = ResidentMegabytes();

    TestHub hub;
    QString error;
    if (!testscenes::LoadSkeleton(QStringLiteral(ZELKIN_CORPUS_DIR "/skeletons/mixamo_xbot.glb"), hub, error))
    {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    gHub = &hub;
    const double withScene = ResidentMegabytes();
    QElapsedTimer first;
    first.start();
    {
        QWidget host;
        OpenPanel(host);
        const double withPanel = ResidentMegabytes();
        std::printf("first panel: %.1f ms; resident memory: application %.1f MB, +%.1f MB scene, +%.1f MB panel\n",
                    first.nsecsElapsed() / 1e6, bare, withScene - bare, withPanel - withScene);
    }

    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
