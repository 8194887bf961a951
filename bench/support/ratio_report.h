#pragma once
// Benchmarks here are measured against a baseline run in the same process,
// because shared machines drift. Name every case "group/case" and give each
// group one case named "baseline"; the table after the run shows each case's
// time divided by its group's baseline, and the goal when one was set.
#include <benchmark/benchmark.h>

#include <string>

namespace scanbench {

// The case "group/name" should take at most `maxRatio` times its baseline.
void setGoal(const std::string &group, const std::string &name, double maxRatio);

// Runs the registered benchmarks and prints the ratio table. Returns 0; a
// missed goal is reported in the table, not by the exit status.
int runWithRatios(int argc, char **argv);

} // namespace scanbench
