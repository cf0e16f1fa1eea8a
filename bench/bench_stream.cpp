// Stream writing and reading for a character with every node fully defined, against a plain memcpy of the same
// number of bytes. After the runs the ratios to memcpy are printed; targets: little-endian within 4x, big-endian
// within 8x.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <zelkin/CharacterJointGeometry.h>
#include <zelkin/ZELSolver.h>

namespace {

struct FullCharacter
{
    ZELCharacterDefinition definition {};
    std::vector<CharacterJointGeometry> records = std::vector<CharacterJointGeometry>(ZELNodeCount);
    ZELCharacter* character = nullptr;
    std::vector<unsigned char> little;
    std::vector<unsigned char> big;

    FullCharacter()
    {
        const int32_t limbFlags[4] = {1, 0, 1, 1};
        for (int id = 0; id < ZELNodeCount; ++id) {
            definition.mUsedNodes[id] = 7;
            const float v = 0.01f * static_cast<float>(id);
            CharacterJointGeometry& record = records[id];
            record.SetTranslate(v, 2 * v, 3 * v);
            record.SetRotateQ(0.0f, 0.0f, v, 1.0f);
            record.SetPreRotQ(v, 0.0f, 0.0f, 1.0f);
            record.SetPostRotQ(0.0f, v, 0.0f, 1.0f);
            record.SetMinRLimit(-v, -v, -v);
            record.SetMaxRLimit(v, v, v);
            record.SetLimitEnableMask(1 + id % 63);
            record.SetParentOffsetRotateQ(0.0f, 0.0f, 0.0f, 1.0f);
            record.SetRotationOrder(static_cast<ZELRotationOrder>(id % ZELRotationOrderCount));
        }
        character = ZELCharacterCreate(&definition, std::malloc);
        ZELCharacterSetJointGeometries(&definition, character, records.data(), ZELNodeCount, limbFlags);
        little = write(false);
        big = write(true);
    }

    ~FullCharacter() { ZELCharacterDestroy(character, std::free); }

    std::vector<unsigned char> write(bool bigEndian) const
    {
        int32_t length = 0;
        auto* bytes = static_cast<unsigned char*>(
            ZELCharacterizationStreamWrite(&length, &definition, character, bigEndian, std::malloc, std::free));
        std::vector<unsigned char> stream(bytes, bytes + length);
        std::free(bytes);
        return stream;
    }
};

const FullCharacter& fullCharacter()
{
    static const FullCharacter full;
    return full;
}

void BM_Memcpy(benchmark::State& state)
{
    const std::vector<unsigned char>& source = fullCharacter().little;
    std::vector<unsigned char> target(source.size());
    for (auto _ : state) {
        std::memcpy(target.data(), source.data(), source.size());
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * source.size()));
}

void BM_Write(benchmark::State& state, bool bigEndian)
{
    const FullCharacter& full = fullCharacter();
    for (auto _ : state) {
        int32_t length = 0;
        void* stream = ZELCharacterizationStreamWrite(&length, &full.definition, full.character, bigEndian,
                                                      std::malloc, std::free);
        benchmark::DoNotOptimize(stream);
        std::free(stream);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * full.little.size()));
}

void BM_Read(benchmark::State& state, bool bigEndian)
{
    const std::vector<unsigned char>& stream = bigEndian ? fullCharacter().big : fullCharacter().little;
    ZELCharacterDefinition definition {};
    for (auto _ : state) {
        ZELCharacter* character = ZELCharacterizationStreamRead(
            &definition, stream.data(), static_cast<int32_t>(stream.size()), std::malloc, std::free);
        benchmark::DoNotOptimize(character);
        ZELCharacterDestroy(character, std::free);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * stream.size()));
}

// What one validation costs the solver: build, set the dense records, read every node back, destroy.
void BM_CharacterLifecycle(benchmark::State& state)
{
    const FullCharacter& full = fullCharacter();
    const int32_t limbFlags[4] = {1, 0, 1, 1};
    float t[4], q[4], s[4];
    for (auto _ : state) {
        ZELCharacter* character = ZELCharacterCreate(&full.definition, std::malloc);
        ZELCharacterSetJointGeometries(&full.definition, character, full.records.data(), ZELNodeCount, limbFlags);
        for (int id = 0; id < ZELNodeCount; ++id) {
            ZELGetCharacterizationTransform(character, id, t, q, s);
            benchmark::DoNotOptimize(t);
        }
        ZELCharacterDestroy(character, std::free);
    }
}

BENCHMARK(BM_Memcpy);
BENCHMARK_CAPTURE(BM_Write, little_endian, false);
BENCHMARK_CAPTURE(BM_Read, little_endian, false);
BENCHMARK_CAPTURE(BM_Write, big_endian, true);
BENCHMARK_CAPTURE(BM_Read, big_endian, true);
BENCHMARK(BM_CharacterLifecycle);

// Keeps the per-iteration CPU times of the plain runs so the ratios can be printed once all have finished. CPU time
// rather than wall time: on a shared machine the wall clock also counts other processes.
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration)
                mTimes[run.benchmark_name()] = run.GetAdjustedCPUTime();
        }
        ConsoleReporter::ReportRuns(runs);
    }

    void printRatios() const
    {
        const auto memcpyTime = mTimes.find("BM_Memcpy");
        if (memcpyTime == mTimes.end())
            return;
        const struct
        {
            const char* name;
            double limit;
        } targets[] = {{"BM_Write/little_endian", 4.0},
                       {"BM_Read/little_endian", 4.0},
                       {"BM_Write/big_endian", 8.0},
                       {"BM_Read/big_endian", 8.0}};
        std::printf("\nRatio to memcpy of %zu bytes:\n", fullCharacter().little.size());
        for (const auto& target : targets) {
            const auto time = mTimes.find(target.name);
            if (time == mTimes.end())
                continue;
            const double ratio = time->second / memcpyTime->second;
            std::printf("  %-24s %6.2fx  (target <= %.0fx) %s\n", target.name, ratio, target.limit,
                        ratio <= target.limit ? "ok" : "MISSED");
        }
    }

private:
    std::map<std::string, double> mTimes;
};

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios();
    benchmark::Shutdown();
    return 0;
}
