#pragma once

// The whole command line, from the program's arguments to its exit status. A program of its own can set up the
// process first (the benchmarks read skeletons in process through it) and then hand over.
int RunZelkin(int argc, char** argv);
