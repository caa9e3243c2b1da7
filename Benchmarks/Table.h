#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace gavrel {

/// Collects the counters of all repetitions and prints their medians as one table: a line for each figure, a column for
/// each lattice.
class Table : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;
  void Finalize() override;

 private:
  using Repetitions = std::vector<double>;
  std::map<std::string, std::map<int, Repetitions>> figures_;  // by figure, then by nodes along an edge
};

}  // namespace gavrel
