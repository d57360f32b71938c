// Entry point of every benchmark program.
#include <benchmark/benchmark.h>

BENCHMARK_MAIN();
