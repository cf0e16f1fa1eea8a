#pragma once

// Every skeleton this process imports from now on is read with Assimp in the process itself instead of in
// zelkin-reader, the answer unchanged. For programs whose subject is not the isolation and that import thousands
// of times (a process start each is most of their time), and for benchmarks that set the two ways side by side.
// `keepUntilExit` leaves Assimp's scenes to the process's end, as zelkin-reader does.
void ReadSkeletonsInProcess(bool keepUntilExit = false);
