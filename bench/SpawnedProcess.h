#pragma once

#include <string>
#include <vector>

// Runs a program with stdout and stderr on /dev/null and waits for it. The seconds it took, start to exit, or -1
// when it could not start, was killed, or exited with a status `accepted` does not hold.
double RunProcess(const std::vector<std::string>& command, const std::vector<int>& accepted = {0});
