#include <benchmark/benchmark.h>
#include <simdjson.h>

#include <filesystem>

#include "Benchmarks/BenchmarkLattice.h"
#include "Benchmarks/Stopwatch.h"
#include "DataModel/ProjectFile.h"

using namespace gavrel;

namespace {

void file(benchmark::State& state) {
  const auto project = benchmarkLattice(static_cast<int>(state.range(0))).build();
  const std::filesystem::path path =
      std::filesystem::temp_directory_path() / ("gavrel-benchmark-" + std::to_string(state.range(0)) + ".json");
  simdjson::dom::parser
      parser;  // keeps its memory between repetitions; that of "load and parse" is new each time, as ours
  std::filesystem::remove(path);
  for ([[maybe_unused]] auto _ : state) {
    const auto json = encodeProject(*project);
    Stopwatch watch;
    std::size_t encoded = 0;
    encodeProject(*project, [&encoded](std::string_view piece) { encoded += piece.size(); });
    const double encoding = watch.lap();
    bool failed = !json || encoded != json->size() || replaceFile(path, *json).has_value();
    const double bareWriting = watch.lap();
    std::filesystem::remove(path);
    watch.lap();
    failed |= writeProject(*project, path).has_value();
    const double writing = watch.lap();

    const simdjson::padded_string text(*json);
    failed |= parser.parse(text).error() != simdjson::SUCCESS;
    watch.lap();
    failed |= parser.parse(text).error() != simdjson::SUCCESS;
    const double parsing = watch.lap();
    double loading = 0;
    {
      simdjson::dom::parser fresh;
      watch.lap();
      failed |= fresh.load(path).error() != simdjson::SUCCESS;
      loading = watch.lap();
    }
    watch.lap();
    failed |= !readProject(path);
    const double reading = watch.lap();
    std::filesystem::remove(path);
    if (failed) throw std::runtime_error("the lattice cannot be written and read");

    const double megabytes = static_cast<double>(json->size()) / 1e6;
    state.counters["file"] = megabytes;
    state.counters["encoding"] = megabytes / encoding;
    state.counters["writing"] = megabytes / writing;
    state.counters["bare write"] = megabytes / bareWriting;
    state.counters["writing / bare write"] = bareWriting / writing;
    state.counters["reading"] = megabytes / reading;
    state.counters["bare parse"] = megabytes / parsing;
    state.counters["load and parse"] = megabytes / loading;
    state.counters["reading / bare parse"] = parsing / reading;
    state.counters["reading / load and parse"] = loading / reading;
  }
}

BENCHMARK(file)->Arg(10)->Iterations(1)->Repetitions(9);
BENCHMARK(file)->Arg(20)->Iterations(1)->Repetitions(5);
BENCHMARK(file)->Arg(30)->Iterations(1)->Repetitions(5);
BENCHMARK(file)->Arg(40)->Iterations(1)->Repetitions(3);

}  // namespace
