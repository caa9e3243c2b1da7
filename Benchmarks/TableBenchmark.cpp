#include <benchmark/benchmark.h>

#include <algorithm>

#include "Benchmarks/BenchmarkLattice.h"
#include "Benchmarks/Stopwatch.h"
#include "Workbench/ResultTable.h"

using namespace gavrel;

namespace {

constexpr double milli = 1e-3;

/// The time to sort and search the elements; the text occurs nowhere, which takes longest to find out.
void table(benchmark::State& state) {
  ProjectViewModel viewModel;
  viewModel.setProject(benchmarkLattice(static_cast<int>(state.range(0))).build());
  const auto columns = elementColumns();
  const auto forceColumn = std::ranges::find(columns, "force", &TableColumn::name) - columns.begin();
  ResultTable elements;
  elements.setProperty("showsElements", true);
  elements.setProjectViewModel(&viewModel);
  elements.setActive(true);
  for ([[maybe_unused]] auto _ : state) {
    Stopwatch watch;
    elements.sortBy(static_cast<int>(forceColumn));
    state.counters["sort elements"] = watch.lap() / milli;
    elements.setSearch("nowhere");
    state.counters["search elements"] = watch.lap() / milli;
    elements.setSearch("");
    state.counters["bars"] = elements.rows();
  }
}

BENCHMARK(table)->Arg(20)->Iterations(1)->Repetitions(5);
BENCHMARK(table)->Arg(40)->Iterations(1)->Repetitions(3);

}  // namespace
