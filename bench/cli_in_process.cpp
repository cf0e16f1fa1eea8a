// bench_cli's yardstick for isolation: the same command line as zelkin, but reading each skeleton with Assimp in
// its own process instead of in zelkin-reader.
#include "InProcessReading.h"
#include "ZelkinMain.h"

int main(int argc, char** argv)
{
    // Assimp's scene left to the process's end, as zelkin-reader leaves it: the comparison is of the isolation.
    ReadSkeletonsInProcess(true);
    return RunZelkin(argc, argv);
}
