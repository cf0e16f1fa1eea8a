// Automatic characterization: the Mixamo rig as the programs read it, and a humanoid grown to 1,000, 10,000 and
// 100,000 bones with hair and cloth chains. Targets: the rig within 1 ms, 10,000 bones within 50 ms, the cost
// growing linearly with the bones.
#include <cmath>

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <zelkin/SkeletonRecognizer.h>
#include <zelkin/TemplateLibrary.h>

#include "Scene.h"
#include "SceneHub.h"
#include "SceneImporter.h"

namespace
{
const TemplateLibrary& ShippedLibrary()
{
    static const QTemporaryDir emptyUserDirectory;
    static const TemplateLibrary library(emptyUserDirectory.path());
    return library;
}

const std::vector<SkeletonRecognizer::Bone>& Mixamo()
{
    static const std::vector<SkeletonRecognizer::Bone> bones = [] {
        Scene scene;
        SceneImporter().Import(QStringLiteral(ZELKIN_CORPUS_DIR "/skeletons/mixamo_xbot.glb"), scene);
        std::vector<SkeletonRecognizer::Bone> read;
        SceneHub(scene).DescribeSkeleton(read);
        return read;
    }();
    return bones;
}

int IndexOf(const std::vector<SkeletonRecognizer::Bone>& bones, const char* name)
{
    for (size_t i = 0; i < bones.size(); ++i)
        if (bones[i].name == QLatin1String(name))
            return int(i);
    return -1;
}

// A chain of `length` bones hanging from `parent`, starting at `from` and stepping by `step`.
void AddChain(std::vector<SkeletonRecognizer::Bone>& bones, int parent, const QString& name, int length,
              SkeletonRecognizer::Vector from, const SkeletonRecognizer::Vector& step)
{
    for (int i = 0; i < length; ++i)
    {
        SkeletonRecognizer::Bone bone;
        bone.name = QStringLiteral("%1_%2").arg(name).arg(i);
        bone.parent = parent;
        bone.position = from;
        for (int axis = 0; axis < 3; ++axis)
            from[size_t(axis)] += step[size_t(axis)];
        parent = int(bones.size());
        bones.push_back(bone);
    }
}

// The Mixamo rig with hair chains fanning from the head and cloth chains around the hips until it has `count`
// bones.
std::vector<SkeletonRecognizer::Bone> Grown(int count)
{
    std::vector<SkeletonRecognizer::Bone> bones = Mixamo();
    const int head = IndexOf(bones, "mixamorig:Head");
    const int hips = IndexOf(bones, "mixamorig:Hips");
    for (int chain = 0; int(bones.size()) < count; ++chain)
    {
        const double angle = chain * 2.399963; // golden angle: no two chains alike
        const double x = std::cos(angle);
        const double z = std::sin(angle);
        if (chain % 2 == 0)
            AddChain(bones, head, QStringLiteral("hair%1").arg(chain), 20, {0.08 * x, 1.7, 0.08 * z},
                     {0.01 * x, -0.03, 0.01 * z});
        else
            AddChain(bones, hips, QStringLiteral("skirt%1").arg(chain), 10, {0.15 * x, 1.0, 0.15 * z},
                     {0.01 * x, -0.04, 0.01 * z});
    }
    bones.resize(size_t(count));
    return bones;
}

void BM_RecognizeMixamo(benchmark::State& state)
{
    const SkeletonRecognizer recognizer(ShippedLibrary());
    size_t nodes = 0;
    for (auto _ : state)
    {
        const SkeletonRecognizer::Result result = recognizer.Recognize(Mixamo());
        nodes = result.characters.empty() ? 0 : result.characters.front().nodes.size();
        benchmark::DoNotOptimize(result);
    }
    state.counters["nodes"] = double(nodes);
}
BENCHMARK(BM_RecognizeMixamo)->Unit(benchmark::kMicrosecond);

// What the panel and the programs pay for one automatic characterization: the templates are read as well.
void BM_RecognizeMixamoWithTemplatesRead(benchmark::State& state)
{
    for (auto _ : state)
    {
        const SkeletonRecognizer recognizer(ShippedLibrary());
        benchmark::DoNotOptimize(recognizer.Recognize(Mixamo()));
    }
}
BENCHMARK(BM_RecognizeMixamoWithTemplatesRead)->Unit(benchmark::kMicrosecond);

void BM_RecognizeLargeScene(benchmark::State& state)
{
    const std::vector<SkeletonRecognizer::Bone> bones = Grown(int(state.range(0)));
    const SkeletonRecognizer recognizer(ShippedLibrary());
    size_t characters = 0;
    for (auto _ : state)
    {
        const SkeletonRecognizer::Result result = recognizer.Recognize(bones);
        characters = result.characters.size();
        benchmark::DoNotOptimize(result);
    }
    state.counters["characters"] = double(characters);
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_RecognizeLargeScene)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Complexity();
} // namespace

BENCHMARK_MAIN();
