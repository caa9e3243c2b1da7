#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

#include "Benchmarks/BenchmarkLattice.h"
#include "Benchmarks/Stopwatch.h"
#include "PreviewContent/SceneContents.h"
#include "Scene/OrbitCamera.h"

using namespace gavrel;

namespace {

constexpr int picks = 50;
constexpr double milli = 1e-3;

/// The work of the 3D view on the processor: tables for the renderer after a change of the project, and a click.
void scene(benchmark::State& state) {
  ProjectViewModel viewModel;
  viewModel.setProject(benchmarkLattice(static_cast<int>(state.range(0))).build());
  SceneContents contents;
  contents.setProjectViewModel(&viewModel);
  const auto bars = static_cast<double>((*viewModel.project)->trussElements->size());
  for ([[maybe_unused]] auto _ : state) {
    Stopwatch watch;
    contents.update();
    const double first = watch.lap();
    contents.update();
    const double update = watch.lap();

    OrbitCamera camera;
    camera.width = 1200;
    camera.height = 700;
    camera.yaw = 0.5;
    camera.pitch = -0.3;
    camera.fit(contents.shapeCentres());
    std::mt19937 random(1);
    std::uniform_real_distribution<double> x(0, camera.width), y(0, camera.height);
    std::vector<double> times;
    for (int i = 0; i < picks; ++i) {
      const Ray ray = camera.ray(x(random), y(random));
      watch.lap();
      benchmark::DoNotOptimize(hitTest(contents.scene(), ray));
      times.push_back(watch.lap());
    }
    state.counters["nodes"] = static_cast<double>((*viewModel.project)->nodeCount());
    state.counters["bars"] = bars;
    state.counters["first scene and tables"] = first / milli;
    state.counters["scene and tables"] = update / milli;
    state.counters["scene and tables / bar"] = update / bars / 1e-9;
    state.counters["slowest of 50 picks"] = std::ranges::max(times) / milli;
  }
}

BENCHMARK(scene)->Arg(6)->Iterations(1)->Repetitions(9);
BENCHMARK(scene)->Arg(10)->Iterations(1)->Repetitions(9);
BENCHMARK(scene)->Arg(20)->Iterations(1)->Repetitions(9);
BENCHMARK(scene)->Arg(30)->Iterations(1)->Repetitions(5);
BENCHMARK(scene)->Arg(40)->Iterations(1)->Repetitions(5);

}  // namespace
