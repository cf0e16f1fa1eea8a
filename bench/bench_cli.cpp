// `zelkin characterize` on the Mixamo rig as a whole process (start, read the skeleton in zelkin-reader, map,
// validate, write the stream and its bones file). IsolatedOverInProcess sets it beside the same command line reading
// the skeleton in its own process (cli_in_process): the cost of isolation, aimed at no more than 10%, is its
// "ratio" counter less one. CharacterizeOverImport sets it beside a process that only imports the file.
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
const std::vector<std::string> InProcess = {CLI_IN_PROCESS, "characterize", Skeleton, "-o", OutputBase() + ".zelc"};

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
void MeasurePair(benchmark::State& state, const std::vector<std::string>& command,
                 const std::vector<std::string>& yardstick)
{
    double measured = 0.0;
    double reference = 0.0;
    for (auto _ : state)
    {
        const double one = RunProcess(command);
        const double other = RunProcess(yardstick);
        if (Failed(state, one, command[0]) || Failed(state, other, yardstick[0]))
            break;
        measured += one;
        reference += other;
        state.SetIterationTime(one + other);
    }
    if (reference > 0.0)
        state.counters["ratio"] = measured / reference;
    RemoveOutputs();
}

void BM_IsolatedOverInProcess(benchmark::State& state)
{
    MeasurePair(state, Characterize, InProcess);
}

void BM_CharacterizeOverImport(benchmark::State& state)
{
    MeasurePair(state, Characterize, ImportOnly);
}
} // namespace

BENCHMARK(BM_CharacterizeProcess)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_ImportOnlyProcess)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_IsolatedOverInProcess)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(4.0);
BENCHMARK(BM_CharacterizeOverImport)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(4.0);

BENCHMARK_MAIN();
