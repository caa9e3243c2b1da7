#include <benchmark/benchmark.h>
#include <cblas.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <thread>
#include <vector>

#include "Benchmarks/BenchmarkLattice.h"
#include "Benchmarks/Stopwatch.h"
#include "DataModel/Solver.h"
#include "Factorization/SparseCholesky.h"
#include "Platform/KernelResources.h"

using namespace gavrel;

namespace {

constexpr double giga = 1e9;

/// Operations a second of large matrix products, one in each thread.
double measureProducts(int threads) {
  constexpr std::int32_t n = 1500;
  constexpr int products = 3;
  constexpr double operations = 2.0 * n * n * n;
  if (reserveKernelBuffers(threads) < threads) throw std::runtime_error("no memory for the matrix products");
  const std::size_t size = std::size_t{n} * n;
  std::vector<std::vector<double>> C(static_cast<std::size_t>(threads), std::vector<double>(size));
  const std::vector<double> A(size, 1.0);
  Stopwatch watch;
  std::vector<std::thread> running;
  running.reserve(C.size());
  for (auto& target : C)
    running.emplace_back([&A, &target] {
      for (int i = 0; i < products; ++i)
        cblas_dgemm(CblasColMajor, CblasNoTrans, CblasTrans, n, n, n, -1, A.data(), n, A.data(), n, 1, target.data(),
                    n);
    });
  for (std::thread& thread : running) thread.join();
  return threads * products * operations / watch.lap();
}

/// Seconds of a factorization like those of further steps.
double measureFactorization(SparseCholesky& cholesky, const SymmetricMatrix& matrix) {
  if (cholesky.factorize(matrix)) throw std::runtime_error("the lattice cannot be factorized");
  cholesky.dropFactor();
  Stopwatch watch;
  const bool failed = cholesky.factorize(matrix).has_value();
  const double seconds = watch.lap();
  if (failed) throw std::runtime_error("the lattice cannot be factorized");
  cholesky.dropFactor();
  return seconds;
}

/// The speed of the factorization beside that of matrix products, on all threads and on one.
void factorization(benchmark::State& state) {
  const auto project = benchmarkLattice(static_cast<int>(state.range(0))).build();
  Solver solver(*project);
  solver.Prepare();
  solver.Assemble();
  project->FillHessianDiagonal();
  const CSR& H = project->H_II;
  const SymmetricMatrix matrix{project->nI, dofsPerNode, H.starts, H.indices, H.values, *project->X_I};
  SparseCholesky all;
  SparseCholesky one(1);
  for ([[maybe_unused]] auto _ : state) {
    auto& counters = state.counters;
    const double onAll = measureFactorization(all, matrix);
    const double products = measureProducts(all.threads());
    const double onOne = measureFactorization(one, matrix);
    const double speed = all.operations() / onAll;
    counters["operations"] = all.operations() / giga;
    counters["threads"] = all.threads();
    counters["matrix products"] = products / giga;
    counters["factorization speed"] = speed / giga;
    counters["factorization / matrix products"] = speed / products;
    counters["with one thread"] = onOne;
    counters["with all threads"] = onAll;
    counters["one thread / all threads"] = onOne / onAll;
  }
}

BENCHMARK(factorization)->Arg(10)->Arg(20)->Iterations(1)->Repetitions(9);
BENCHMARK(factorization)->Arg(30)->Iterations(1)->Repetitions(5);
BENCHMARK(factorization)->Arg(40)->Iterations(1)->Repetitions(1);

}  // namespace
