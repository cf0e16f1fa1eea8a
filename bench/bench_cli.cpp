// `zelkin characterize` on the Mixamo rig as a whole process (start, import, map, validate, write the stream and
// its bones file) against a process that only imports the same file with Assimp. Target: at most 1.3 times the
// import alone; the CharacterizeOverImport counter "ratio" gives it directly.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

extern char** environ;

namespace
{
const std::string Skeleton = ZELKIN_CORPUS_DIR "/skeletons/mixamo_xbot.glb";

std::string OutputPath()
{
    const char* tmp = std::getenv("TMPDIR");
    return std::string(tmp != nullptr ? tmp : "/tmp") + "/bench_cli_" + std::to_string(getpid()) + ".zelc";
}

// Runs the program with stdout and stderr on /dev/null; the seconds it took, start to exit, or -1 when it could
// not start or did not exit with 0.
double Run(const std::vector<std::string>& command)
{
    std::vector<char*> argv;
    for (const std::string& argument : command)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);

    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    const int spawned = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    if (spawned != 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return -1.0;
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

const std::vector<std::string> Characterize = {ZELKIN_CLI, "characterize", Skeleton, "-o", OutputPath()};
const std::vector<std::string> ImportOnly = {BENCH_IMPORT_ONLY, Skeleton};

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
        const double seconds = Run(command);
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
void BM_CharacterizeOverImport(benchmark::State& state)
{
    double characterize = 0.0;
    double import = 0.0;
    for (auto _ : state)
    {
        const double one = Run(Characterize);
        const double other = Run(ImportOnly);
        if (Failed(state, one, Characterize[0]) || Failed(state, other, ImportOnly[0]))
            return;
        characterize += one;
        import += other;
        state.SetIterationTime(one + other);
    }
    state.counters["ratio"] = characterize / import;
    std::remove(Characterize.back().c_str());
    std::remove((Characterize.back().substr(0, Characterize.back().size() - 5) + ".bones.xml").c_str());
}
} // namespace

BENCHMARK(BM_CharacterizeProcess)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_ImportOnlyProcess)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_CharacterizeOverImport)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(4.0);

BENCHMARK_MAIN();
