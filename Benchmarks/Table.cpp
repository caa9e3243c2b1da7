#include "Benchmarks/Table.h"

#include <algorithm>
#include <cstdio>
#include <set>

namespace gavrel {

namespace {

struct Line {
  const char* figure;
  const char* unit;
};

constexpr Line lines[] = {
    {"nodes", ""},
    {"bars", ""},
    {"entries", ""},
    {"pattern", "s"},
    {"matrix", "s"},
    {"assembly", "s"},
    {"repair", "s"},
    {"analysis", "s"},
    {"factorization", "s"},
    {"substitution", "s"},
    {"solve", "s"},
    {"steps", ""},
    {"further step", "s"},
    {"peak", "GiB"},
    {"floor analysis", "s"},
    {"floor factorization", "s"},
    {"floor substitution", "s"},
    {"linear solve / floor", ""},
    {"further step / floor step", ""},
    {"pattern and matrix / linear solve", ""},
    {"operations", "1e9"},
    {"threads", ""},
    {"matrix products", "GF/s"},
    {"factorization speed", "GF/s"},
    {"factorization / matrix products", ""},
    {"with one thread", "s"},
    {"with all threads", "s"},
    {"one thread / all threads", ""},
    {"file", "MB"},
    {"encoding", "MB/s"},
    {"writing", "MB/s"},
    {"bare write", "MB/s"},
    {"writing / bare write", ""},
    {"reading", "MB/s"},
    {"bare parse", "MB/s"},
    {"load and parse", "MB/s"},
    {"reading / bare parse", ""},
    {"reading / load and parse", ""},
    {"first scene and tables", "ms"},
    {"scene and tables", "ms"},
    {"scene and tables / bar", "ns"},
    {"slowest of 50 picks", "ms"},
    {"check and solve", "s"},
    {"check and solve / solve", ""},
    {"sort elements", "ms"},
    {"search elements", "ms"},
    {"user held up", "ms"},
    {"until on disk", "ms"},
};

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

void printCell(double value) {
  if (value >= 1000 || value == static_cast<double>(static_cast<long long>(value))) {
    std::printf(" %12.0f", value);
  } else {
    std::printf(" %12.4f", value);
  }
}

}  // namespace

bool Table::ReportContext(const Context& context) {
  std::printf("%d processors, %.0f MHz\n", context.cpu_info.num_cpus, context.cpu_info.cycles_per_second / 1e6);
  std::fflush(stdout);
  return true;
}

void Table::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.run_type != Run::RT_Iteration) continue;
    const int nodesPerEdge = std::stoi(run.run_name.args);
    for (const auto& [figure, counter] : run.counters) figures_[figure][nodesPerEdge].push_back(counter.value);
  }
}

void Table::Finalize() {
  std::set<int> columns;
  for (const auto& [figure, byColumn] : figures_)
    for (const auto& [column, repetitions] : byColumn) columns.insert(column);

  std::printf("%-34s %-5s", "lattice, nodes along an edge", "");
  for (const int column : columns) std::printf(" %12d", column);
  std::printf("\n");
  for (const Line& line : lines) {
    const auto found = figures_.find(line.figure);
    if (found == figures_.end()) continue;
    std::printf("%-34s %-5s", line.figure, line.unit);
    for (const int column : columns) {
      const auto cell = found->second.find(column);
      if (cell == found->second.end()) {
        std::printf(" %12s", "");
      } else {
        printCell(median(cell->second));
      }
    }
    std::printf("\n");
  }
}

}  // namespace gavrel
