#pragma once

#include <benchmark/benchmark.h>

namespace qorcfg::bench {

/// Goal of a benchmark: at most this many times its floor, the benchmark of the same name with
/// "Floor" before the arguments. Shown beside the ratio that was measured.
inline void set_goal(benchmark::State &state, double times_the_floor)
{
    state.counters["goal"] = times_the_floor;
}

/// Runs the registered benchmarks and prints a line for each: what it took, its floor, the ratio,
/// and the goal. With `--json` first on the command line the output is Google Benchmark's own.
int run_and_print(int argc, char **argv);

} // namespace qorcfg::bench
