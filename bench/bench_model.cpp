// The model's once-a-second geometry check on a fully mapped character, when the host changed nothing and when it
// moved one bone. The check must stay well under a millisecond of one core per second.
#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/CharacterizationModel.h>

#include "TPose.h"
#include "TestHub.h"
#include "TestScenes.h"

namespace {

// Every node is mapped; `withInlineRolls` false leaves the in-line rolls out so that the character is clean.
struct MappedScene
{
    explicit MappedScene(bool withInlineRolls)
    {
        tpose::AssignedFlags mapped = tpose::AllAssigned();
        if (!withInlineRolls)
        {
            for (int nodeId = 41; nodeId <= 48; ++nodeId)
                mapped[nodeId] = 0;
        }
        testscenes::AddPoseBones(hub, pose, mapped, QStringLiteral("rig:"));
        std::vector<CharacterizationModel::Assignment> assignments;
        for (int nodeId = 0; nodeId < BoneCatalogue::NodeCount; ++nodeId)
        {
            if (mapped[nodeId] != 0)
                assignments.emplace_back(nodeId, QStringLiteral("rig:") + BoneCatalogue::NodeName(nodeId));
        }
        model.AssignBones(assignments);
    }

    tpose::Pose pose = tpose::Make();
    TestHub hub;
    CharacterizationModel model {&hub};
};

void BM_CheckGeometryUnchanged(benchmark::State& state)
{
    MappedScene scene(state.range(0) != 0);
    for (auto _ : state)
        scene.model.CheckGeometry();
    state.counters["mapped"] = scene.model.GetCurrentCharacterization()->AssignedCount();
    state.counters["state"] = scene.model.GetValidationState();
}

// The host moves the head back and forth: every check finds new geometry.
void BM_CheckGeometryMoved(benchmark::State& state)
{
    MappedScene scene(false);
    const tpose::Position head = scene.pose[15];
    float offset = 0.0f;
    for (auto _ : state)
    {
        offset = offset == 0.0f ? 0.5f : 0.0f;
        scene.hub.MoveBone(QStringLiteral("rig:Head"), head[0], head[1] + offset, head[2]);
        scene.model.CheckGeometry();
    }
}

} // namespace

BENCHMARK(BM_CheckGeometryUnchanged)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond)->Repetitions(10)->ReportAggregatesOnly(true);
BENCHMARK(BM_CheckGeometryMoved)->Unit(benchmark::kMicrosecond)->Repetitions(10)->ReportAggregatesOnly(true);

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv); // the model's timer needs one
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
