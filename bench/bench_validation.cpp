// One full validation run on a fully mapped T-pose, and the coincident-node scan against its literal form.
#include <benchmark/benchmark.h>

#include "LiteralCoincidentScan.h"
#include "PoseCharacter.h"
#include "SameGeometryValidator.h"
#include "TPose.h"
#include "ValidationRun.h"

namespace {

struct FullyMappedTPose
{
    tpose::AssignedFlags flags = tpose::AllAssigned();
    PoseCharacter::Records records = PoseCharacter::MakeRecords(tpose::Make());
};

// What the model does on every change: character in, rules run, character out.
void BM_ValidationRun(benchmark::State& state)
{
    const FullyMappedTPose input;
    const ValidationRun run;
    for (auto _ : state) {
        const PoseCharacter character(input.flags.data(), input.records);
        ValidationOutcome outcome = run.Run(input.flags.data(), character.Get(), {});
        benchmark::DoNotOptimize(outcome);
    }
}

void BM_CoincidentScan(benchmark::State& state)
{
    const FullyMappedTPose input;
    const PoseCharacter character(input.flags.data(), input.records);
    for (auto _ : state) {
        auto findings = SameGeometryValidator::FindCoincidentPairs(input.flags.data(), character.Get());
        benchmark::DoNotOptimize(findings);
    }
}

void BM_CoincidentScanLiteral(benchmark::State& state)
{
    const FullyMappedTPose input;
    const PoseCharacter character(input.flags.data(), input.records);
    for (auto _ : state) {
        auto findings = LiteralCoincidentScan(input.flags.data(), character.Get());
        benchmark::DoNotOptimize(findings);
    }
}

} // namespace

BENCHMARK(BM_ValidationRun)->Unit(benchmark::kMicrosecond)->Repetitions(15)->ReportAggregatesOnly(true);
BENCHMARK(BM_CoincidentScan)->Unit(benchmark::kMicrosecond)->Repetitions(15)->ReportAggregatesOnly(true);
BENCHMARK(BM_CoincidentScanLiteral)->Unit(benchmark::kMicrosecond)->Repetitions(15)->ReportAggregatesOnly(true);

BENCHMARK_MAIN();
