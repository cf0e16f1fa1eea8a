// A pipeline's folder of skeletons: 200 files (the corpus rigs and the sample, copied) characterized by one
// `zelkin characterize FOLDER -o OUT` with one worker and with two, against 200 separate runs of the program.
// Each gives its files a second ("files_per_second"); the aim is two workers at 1.7 times one on a 2-core machine.
#include <string>
#include <vector>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include "SpawnedProcess.h"

namespace
{
constexpr int kFiles = 200;

const QTemporaryDir& Workspace()
{
    static const QTemporaryDir workspace;
    return workspace;
}

// The rigs, copied round-robin into one folder; their paths.
const QStringList& Skeletons()
{
    static const QStringList files = [] {
        const QStringList sources = {QStringLiteral(ZELKIN_CORPUS_DIR "/skeletons/mixamo_xbot.glb"),
                                     QStringLiteral(ZELKIN_CORPUS_DIR "/skeletons/poser_pirouette.bvh"),
                                     QStringLiteral(ZELKIN_SOURCE_DIR "/examples/sample_humanoid.bvh")};
        QDir().mkpath(Workspace().filePath("rigs"));
        QStringList copies;
        for (int i = 0; i < kFiles; ++i)
        {
            const QString& source = sources[i % sources.size()];
            const QString copy = Workspace().filePath(QStringLiteral("rigs/rig%1.%2").arg(i, 3, 10, QLatin1Char('0'))
                                                          .arg(source.section('.', -1)));
            QFile::copy(source, copy);
            copies.append(copy);
        }
        return copies;
    }();
    return files;
}

void Report(benchmark::State& state, double seconds)
{
    if (seconds <= 0.0)
    {
        state.SkipWithError("zelkin failed");
        return;
    }
    state.SetIterationTime(seconds);
    state.counters["files_per_second"] = kFiles / seconds;
}

void BM_Batch(benchmark::State& state)
{
    Skeletons();
    const std::vector<std::string> command = {ZELKIN_CLI, "characterize", Workspace().filePath("rigs").toStdString(),
                                              "-o", Workspace().filePath("out").toStdString(), "-j",
                                              std::to_string(state.range(0))};
    for (auto _ : state)
        Report(state, RunProcess(command, {0, 2}));
}
BENCHMARK(BM_Batch)->Arg(1)->Arg(2)->UseManualTime()->Iterations(3)->Unit(benchmark::kSecond);

void BM_SeparateRuns(benchmark::State& state)
{
    const QString out = Workspace().filePath("separate");
    QDir().mkpath(out);
    for (auto _ : state)
    {
        double seconds = 0.0;
        for (const QString& file : Skeletons())
        {
            const double one = RunProcess({ZELKIN_CLI, "characterize", file.toStdString(), "-o",
                                           (out + "/" + file.section('/', -1) + ".zelc").toStdString()},
                                          {0, 2});
            if (one < 0.0)
            {
                seconds = -1.0;
                break;
            }
            seconds += one;
        }
        Report(state, seconds);
    }
}
BENCHMARK(BM_SeparateRuns)->UseManualTime()->Iterations(3)->Unit(benchmark::kSecond);
} // namespace

BENCHMARK_MAIN();
