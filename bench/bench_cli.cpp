// `zelkin characterize` on the Mixamo rig as a whole process (start, import, map, validate, write the stream and
// its bones file) against a process that only imports the same file with Assimp. Target: at most 1.3 times the
// import alone; the CharacterizeOverImport counter "ratio" gives it directly. FloorOverImport does the same for the
// least a Qt program could do for the command line (load Qt Core, import, save two files of its sizes).
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <unistd.h>

#include <benchmark/benchmark.h>

#include "SpawnedProcess.h"

namespace
{
const std::string Skeleton = ZELKIN_CORPUS_DIR "/skeletons/mixamo_xbot.glb";

// Without the extension; the programs add ".zelc" and ".bones.xml".
std::string OutputBase()
{
    const char* tmp = std::getenv("TMPDIR");
    return std::string(tmp != nullptr ? tmp : "/tmp") + "/bench_cli_" + std::to_string(getpid());
}

const std::vector<std::string> Characterize = {ZELKIN_CLI, "characterize", Skeleton, "-o", OutputBase() + ".zelc"};
const std::vector<std::string> ImportOnly = {CLI_IMPORT_ONLY, Skeleton};
const std::vector<std::string> QtFloor = {CLI_QT_FLOOR, Skeleton, OutputBase()};

void RemoveOutputs()
{
    std::remove((OutputBase() + ".zelc").c_str());
    std::remove((OutputBase() + ".bones.xml").c_str());
}

bool Failed(benchmark::State& state, double seconds, const std::string& program)
{
    if (seconds >= 0.0)
        return false;
    state.SkipWithError((program + " failed").c_str());
    return true;
}

void Measure(benchmark::State& state, const std::vector<std::string>& command)
{
    for (auto _ : state)
    {
        const double seconds = RunProcess(command);
        if (Failed(state, seconds, command[0]))
            break;
        state.SetIterationTime(seconds);
    }
}

void BM_CharacterizeProcess(benchmark::State& state)
{
    Measure(state, Characterize);
}

void BM_ImportOnlyProcess(benchmark::State& state)
{
    Measure(state, ImportOnly);
}

// Both in every iteration, so that the machine's load drifts over the pair alike.
void MeasureOverImport(benchmark::State& state, const std::vector<std::string>& command)
{
    double measured = 0.0;
    double import = 0.0;
    for (auto _ : state)
    {
        const double one = RunProcess(command);
        const double other = RunProcess(ImportOnly);
        if (Failed(state, one, command[0]) || Failed(state, other, ImportOnly[0]))
            break;
        measured += one;
        import += other;
        state.SetIterationTime(one + other);
    }
    if (import > 0.0)
        state.counters["ratio"] = measured / import;
    RemoveOutputs();
}

void BM_CharacterizeOverImport(benchmark::State& state)
{
    MeasureOverImport(state, Characterize);
}

void BM_FloorOverImport(benchmark::State& state)
{
    MeasureOverImport(state, QtFloor);
}
} // namespace

BENCHMARK(BM_CharacterizeProcess)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_ImportOnlyProcess)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_CharacterizeOverImport)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(4.0);
BENCHMARK(BM_FloorOverImport)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(4.0);

BENCHMARK_MAIN();
