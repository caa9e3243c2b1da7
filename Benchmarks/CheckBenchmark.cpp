#include <benchmark/benchmark.h>

#include <stdexcept>

#include "Benchmarks/BenchmarkLattice.h"
#include "Benchmarks/Stopwatch.h"
#include "DataModel/Solver.h"
#include "Diagnosis/StructureCheck.h"

using namespace gavrel;

namespace {

/// The time of the check, beside that of a solve alone.
void check(benchmark::State& state) {
  const auto project = benchmarkLattice(static_cast<int>(state.range(0))).build();
  for ([[maybe_unused]] auto _ : state) {
    Stopwatch watch;
    const auto found = StructureCheck::inspectAndSolve(*project);
    const double checked = watch.lap();
    const auto outcome = Solver(*project).Solve();
    const double solved = watch.lap();
    if (!found.findings.empty() || outcome.fault) throw std::runtime_error("the lattice is sound");
    state.counters["bars"] = static_cast<double>(project->trussElements->size());
    state.counters["check and solve"] = checked;
    state.counters["solve"] = solved;
    state.counters["check and solve / solve"] = checked / solved;
  }
}

BENCHMARK(check)->Arg(10)->Iterations(1)->Repetitions(9);
BENCHMARK(check)->Arg(20)->Iterations(1)->Repetitions(9);
BENCHMARK(check)->Arg(30)->Iterations(1)->Repetitions(3);

}  // namespace
