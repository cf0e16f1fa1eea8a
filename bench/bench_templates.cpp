// Applying the full 212-entry standard template to big scenes: 150 and 1,539 copies of a 65-bone Mixamo-style rig
// (9,750 and 100,035 bones), each copy under its own prefix ("Char0001_Hips" ...), all offered in scene order.
// Timed: building the matcher and matching every bone. Targets: 10,000 bones in 10 ms (Suffix) and 20 ms
// (Contains); 100,000 bones within 12x the 10,000-bone time.
#include <cstdio>
#include <map>
#include <string>

#include <QStringList>

#include <benchmark/benchmark.h>

#include <zelkin/MappingTemplate.h>
#include <zelkin/NameMatcher.h>
#include <zelkin/TemplateLibrary.h>
#include <zelkin/UserConfiguration.h>

namespace
{
// One Mixamo-style rig, parents first.
QStringList RigNames()
{
    QStringList names = {"Hips", "Spine", "Spine1", "Spine2", "Neck", "Head", "HeadTop_End"};
    for (const QString side : {"Right", "Left"})
    {
        names << side + "Shoulder" << side + "Arm" << side + "ForeArm" << side + "Hand";
        for (const QString finger : {"Thumb", "Index", "Middle", "Ring", "Pinky"})
            for (int joint = 1; joint <= 4; ++joint)
                names << side + "Hand" + finger + QString::number(joint);
    }
    for (const QString side : {"Right", "Left"})
        names << side + "UpLeg" << side + "Leg" << side + "Foot" << side + "ToeBase" << side + "Toe_End";
    return names;
}

QStringList Scene(int copies)
{
    const QStringList rig = RigNames();
    QStringList scene;
    scene.reserve(copies * rig.size());
    for (int copy = 0; copy < copies; ++copy)
    {
        const QString prefix = QStringLiteral("Char%1_").arg(copy, 4, 10, QLatin1Char('0'));
        for (const QString& bone : rig)
            scene.append(prefix + bone);
    }
    return scene;
}

const MappingTemplate& StandardTemplate()
{
    static const MappingTemplate standard = [] {
        MappingTemplate loaded;
        if (!TemplateLibrary(QString()).Load(QStringLiteral("Zelkin"), loaded))
            std::fprintf(stderr, "the shipped standard template is missing\n");
        return loaded;
    }();
    return standard;
}

void BM_ApplyTemplate(benchmark::State& state, NameMatcher::MatchType type)
{
    const QStringList scene = Scene(int(state.range(0)));
    const QStringList delimiters = UserConfiguration::BuiltInDelimiters();
    size_t matched = 0;
    for (auto _ : state)
    {
        const NameMatcher matcher(StandardTemplate(), type, delimiters);
        const std::vector<NameMatcher::Assignment> assignments = matcher.Match(scene, QString(), {});
        matched = assignments.size();
        benchmark::DoNotOptimize(assignments.data());
    }
    state.counters["bones"] = double(scene.size());
    state.counters["matched"] = double(matched);
}

BENCHMARK_CAPTURE(BM_ApplyTemplate, Suffix, NameMatcher::Suffix)->Arg(150)->Arg(1539)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ApplyTemplate, Contains, NameMatcher::Contains)->Arg(150)->Arg(1539)->Unit(benchmark::kMillisecond);

// Keeps the CPU time per run so the targets can be checked once all runs are done.
class TargetReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration)
                mMilliseconds[run.benchmark_name()] = run.GetAdjustedCPUTime();
        ConsoleReporter::ReportRuns(runs);
    }

    void PrintTargets() const
    {
        std::printf("\nTargets:\n");
        for (const auto& [mode, limit] : {std::pair<const char*, double> {"Suffix", 10.0}, {"Contains", 20.0}})
        {
            const std::string small = std::string("BM_ApplyTemplate/") + mode + "/150";
            const std::string large = std::string("BM_ApplyTemplate/") + mode + "/1539";
            if (!mMilliseconds.count(small) || !mMilliseconds.count(large))
                continue;
            const double smallTime = mMilliseconds.at(small);
            const double ratio = mMilliseconds.at(large) / smallTime;
            std::printf("  %-8s 9,750 bones %7.3f ms (target <= %.0f ms) %s; 100,035 bones %.2fx that (target <= 12x) %s\n",
                        mode, smallTime, limit, smallTime <= limit ? "ok" : "MISSED", ratio,
                        ratio <= 12.0 ? "ok" : "MISSED");
        }
    }

private:
    std::map<std::string, double> mMilliseconds;
};
} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    TargetReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.PrintTargets();
    benchmark::Shutdown();
    return 0;
}
