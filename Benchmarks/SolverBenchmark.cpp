#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "Benchmarks/BenchmarkLattice.h"
#include "Benchmarks/Floor.h"
#include "Benchmarks/Stopwatch.h"
#include "Factorization/SparseCholesky.h"

using namespace gavrel;

namespace {

/// Discards standard output while it exists, so that a solve's lines do not mix with the table.
class QuietOutput {
 public:
  QuietOutput() : kept_(::dup(STDOUT_FILENO)) {
    std::fflush(stdout);
    const int nowhere = ::open("/dev/null", O_WRONLY);
    ::dup2(nowhere, STDOUT_FILENO);
    ::close(nowhere);
  }
  QuietOutput(const QuietOutput&) = delete;
  QuietOutput& operator=(const QuietOutput&) = delete;
  ~QuietOutput() {
    std::fflush(stdout);
    ::dup2(kept_, STDOUT_FILENO);
    ::close(kept_);
  }

 private:
  int kept_;
};

/// Resets the peak memory of the process.
void resetPeak() {
  std::ofstream("/proc/self/clear_refs") << "5";
}

/// The peak memory of the process since it was reset.
double peakGiB() {
  std::ifstream status("/proc/self/status");
  std::string word;
  double kibibytes = 0;
  while (status >> word && word != "VmHWM:") continue;
  status >> kibibytes;
  constexpr double kibPerGib = 1024.0 * 1024.0;
  return kibibytes / kibPerGib;
}

/// The whole solve; a further step is one that factorizes after the first, so all except the first and the last.
void wholeSolve(Project& project, benchmark::UserCounters& counters) {
  const QuietOutput quiet;
  std::vector<double> steps;
  Stopwatch step;
  Stopwatch whole;
  project.Solve([&](int, double) { steps.push_back(step.lap()); });
  counters["solve"] = whole.lap();
  counters["steps"] = static_cast<double>(steps.size());
  double further = 0;
  for (std::size_t i = 1; i + 1 < steps.size(); ++i) further += steps[i];
  counters["further step"] = further / static_cast<double>(steps.size() - 2);
  counters["peak"] = peakGiB();
}

/// Each stage of the first step by itself.
void stages(Project& project, benchmark::UserCounters& counters) {
  std::ranges::fill(project.U_I.edit(), 0.0);
  Stopwatch watch;
  const auto pattern = CSR::CreateSparsityPattern(*project.trussElements, *project.beamElements, project.nI);
  counters["pattern"] = watch.lap();
  project.H_II = CSR(pattern);
  counters["matrix"] = watch.lap();
  project.R_I = *project.F_I;
  project.H_II.clear();
  auto& trusses = project.trussElements.edit();
  watch.lap();
  for (TrussElement& truss : trusses)
    truss.makeAssembly(project.R_I, project.H_II, *project.D_I, *project.U_I, project.vv_J);
  counters["assembly"] = watch.lap();
  project.FillHessianDiagonal();
  counters["repair"] = watch.lap();

  SparseCholesky cholesky;
  const CSR& H = project.H_II;
  const SymmetricMatrix matrix{project.nI, dofsPerNode, H.starts, H.indices, H.values, *project.X_I};
  watch.lap();
  bool failed = cholesky.analyse(matrix).has_value();
  counters["analysis"] = watch.lap();
  failed |= cholesky.factorize(matrix).has_value();
  counters["factorization"] = watch.lap();
  failed |= cholesky.solve(project.R_I, project.dU_I).has_value();
  counters["substitution"] = watch.lap();
  if (failed) throw std::runtime_error("the lattice cannot be factorized");
}

void solver(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) {
    const auto project = benchmarkLattice(static_cast<int>(state.range(0))).build();
    auto& counters = state.counters;
    counters["nodes"] = static_cast<double>(project->nodeCount());
    counters["bars"] = static_cast<double>(project->trussElements->size());
    resetPeak();
    wholeSolve(*project, counters);
    stages(*project, counters);
    counters["entries"] = static_cast<double>(project->H_II.values.size());
    const Floor floor = Floor::measure(project->H_II);
    counters["floor analysis"] = floor.analysis;
    counters["floor factorization"] = floor.factorization;
    counters["floor substitution"] = floor.solve;

    const double floorStep = floor.factorization + floor.solve;
    const double linearSolve = counters["analysis"] + counters["factorization"] + counters["substitution"];
    counters["linear solve / floor"] = linearSolve / (floor.analysis + floorStep);
    counters["further step / floor step"] = counters["further step"] / floorStep;
    counters["pattern and matrix / linear solve"] = (counters["pattern"] + counters["matrix"]) / linearSolve;
  }
}

BENCHMARK(solver)->Arg(10)->Iterations(1)->Repetitions(9);
BENCHMARK(solver)->Arg(20)->Iterations(1)->Repetitions(5);
BENCHMARK(solver)->Arg(30)->Iterations(1)->Repetitions(3);
BENCHMARK(solver)->Arg(40)->Iterations(1)->Repetitions(1);

}  // namespace
