#include <benchmark/benchmark.h>

#include <QTemporaryDir>

#include "Benchmarks/BenchmarkLattice.h"
#include "Benchmarks/Stopwatch.h"
#include "Workbench/Recovery.h"

using namespace gavrel;

namespace {

constexpr double milli = 1e-3;

/// The time to keep unsaved changes: on the main thread, where the user waits, and until they are on the disk.
void recovery(benchmark::State& state) {
  ProjectViewModel viewModel;
  viewModel.setProject(benchmarkLattice(static_cast<int>(state.range(0))).build());
  const QTemporaryDir folder;
  Recovery recovery(viewModel, folder.path().toStdString());
  for ([[maybe_unused]] auto _ : state) {
    viewModel.setLoadAndRestraint(0, 1, 2, 3, false, false, false);
    Stopwatch watch;
    benchmark::DoNotOptimize((*viewModel.project)->copy());
    const double held = watch.lap();
    recovery.flush();
    state.counters["bars"] = static_cast<double>((*viewModel.project)->trussElements->size());
    state.counters["user held up"] = held / milli;
    state.counters["until on disk"] = watch.lap() / milli;
  }
}

BENCHMARK(recovery)->Arg(10)->Iterations(1)->Repetitions(9);
BENCHMARK(recovery)->Arg(20)->Iterations(1)->Repetitions(9);
BENCHMARK(recovery)->Arg(40)->Iterations(1)->Repetitions(5);

}  // namespace
