#include <benchmark/benchmark.h>
#ifdef GAVREL_APPLICATION
#include <QCoreApplication>
#endif

#include "Benchmarks/Table.h"

using namespace gavrel;

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
#ifdef GAVREL_APPLICATION
  // One for all benchmarks, since Qt's threads end with it.
  const QCoreApplication application(argc, argv);
#endif
  Table table;
  benchmark::RunSpecifiedBenchmarks(&table);
  benchmark::Shutdown();
}
