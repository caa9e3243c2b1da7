#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <random>

#include "Diagnosis/StructureCheck.h"
#include "Tests/Structures.h"

using namespace gavrel;

namespace {

using enum Finding::Consequence;

/// Draws a structure with faults of all kinds, often several at a time.
class Draw {
 public:
  explicit Draw(unsigned seed) : generator_(seed) {}

  std::shared_ptr<Project> structure() {
    auto project = std::make_shared<Project>();
    const bool isPlane = chance(0.3);
    const int nodes = whole(2, 8);
    for (int node = 0; node < nodes; ++node) project->addNode({half(), half(), isPlane ? 0.0 : half()});
    const double soft = chance(0.03) ? 1e-12 : 1;
    const bool mixed = chance(0.6);
    for (int node = 1; node < nodes; ++node)
      if (!chance(0.05)) join(*project, whole(0, node - 1), node, soft, mixed);
    for (int bar = whole(0, 3 * nodes); bar > 0; --bar)
      join(*project, whole(0, nodes - 1), whole(0, nodes - 1), soft, mixed);
    if (chance(0.25))
      for (int beam = whole(1, 3); beam > 0; --beam)
        addBeam(*project, whole(0, nodes - 1), whole(0, nodes - 1), 100, chance(0.5));
    for (int node = 0; node < nodes; ++node) support(*project, node);
    plant(*project);
    return project;
  }

 private:
  bool chance(double part) { return std::uniform_real_distribution<>(0, 1)(generator_) < part; }
  int whole(int least, int most) { return std::uniform_int_distribution<>(least, most)(generator_); }
  double half() { return 0.5 * whole(0, 8); }

  void join(Project& project, int start, int end, double soft, bool mixed) {
    if (start == end && !chance(0.05)) return;
    const double modulus = soft * (chance(0.01) ? -3 : chance(0.5) ? 100 : 1000);
    addBar(project, start, end, modulus,
           {.isCompressionOnly = mixed && chance(0.25), .isNonLinear = mixed && chance(0.3)});
  }

  void support(Project& project, int node) {
    const bool all = chance(0.4);
    const bool x = all || chance(0.15);
    const bool y = all || chance(0.15);
    const bool z = all || chance(0.5);
    const double size = chance(0.2) ? 50 : 0.5;
    const auto load = [&] { return chance(0.4) ? size * whole(-4, 4) : 0.0; };
    project.setLoadAndRestraint(node, {load(), load(), load()}, x, y, z);
  }

  void plant(Project& project) {
    auto& F = project.F_I.edit();
    auto& D = project.D_I.edit();
    const auto any = [&] { return static_cast<std::size_t>(whole(0, static_cast<int>(project.nI) - 1)); };
    if (chance(0.06)) F[any()] = chance(0.3) ? 1e-7 : 2;
    if (chance(0.02)) std::ranges::fill(F, 0.0);
    if (chance(0.02)) F.resize(any());
    if (chance(0.04))
      F.resize(F.size() + static_cast<std::size_t>(whole(1, 13)), chance(0.3) ? 1 : chance(0.5) ? 0 : 1e-8);
    if (chance(0.05)) D.resize(static_cast<std::size_t>(project.nI) - static_cast<std::size_t>(whole(1, 7)));
    if (chance(0.02)) D.resize(D.size() + static_cast<std::size_t>(whole(1, 13)), chance(0.5));
    if (chance(0.03)) project.X_I.edit().resize(project.X_I->size() + static_cast<std::size_t>(whole(1, 2)), 3.0);
    if (chance(0.01)) F[0] = chance(0.5) ? std::nan("") : 1e200;
    if (chance(0.01)) project.addNode({9, 9, 9});
    if (chance(0.01) && !project.trussElements->empty()) project.trussElements.edit().back().endNodeId = 99;
    if (chance(0.01) && !project.trussElements->empty()) project.trussElements.edit().front().EAL3 *= 1e-11;
    if (chance(0.02) && !project.trussElements->empty()) project.trussElements.edit().front().dXx *= 1.5;
  }

  std::mt19937 generator_;
};

/// What a solve does, by a solve in a process of its own.
Finding::Consequence consequenceOfSolving(const Project& project) {
  int ends[2];
  if (::pipe(ends) != 0) std::abort();
  const pid_t child = ::fork();
  if (child == 0) {
    const rlimit noCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
    if (std::freopen("/dev/null", "w", stdout) == nullptr || std::freopen("/dev/null", "w", stderr) == nullptr)
      std::_Exit(1);
    double last = 0;
    project.copy()->Solve([&last](int, double norm) { last = norm; });
    if (::write(ends[1], &last, sizeof last) != sizeof last) std::_Exit(1);
    std::_Exit(0);
  }
  ::close(ends[1]);
  double last = 0;
  const bool came = ::read(ends[0], &last, sizeof last) == sizeof last;
  ::close(ends[0]);
  ::waitpid(child, nullptr, 0);
  if (!came) return EndsProgram;
  return last < Project::convergenceTolerance ? Doubtful : NeverConverges;
}

/// Of a structure of linear bars, whether the free directions that some bar touches can move without stretching one:
/// by the rank of the bars' directions.
bool isMechanism(const Project& project) {
  std::vector<std::size_t> column(static_cast<std::size_t>(project.nI), 0);
  const auto forEachEnd = [&](const TrussElement& bar, auto&& visit) {
    const double factor = std::sqrt(bar.EAL3);
    for (const auto& [node, sign] : {std::pair{bar.startNodeId, 1.0}, {bar.endNodeId, -1.0}}) {
      const auto dof = static_cast<std::size_t>(dofsPerNode * node);
      visit(dof, sign * factor * bar.dXx);
      visit(dof + 1, sign * factor * bar.dXy);
      visit(dof + 2, sign * factor * bar.dXz);
    }
  };
  std::size_t columns = 0;
  for (const TrussElement& bar : *project.trussElements)
    forEachEnd(bar, [&](std::size_t dof, double part) {
      if (part * part >= Project::zeroPivot && !(*project.D_I)[dof] && column[dof] == 0) column[dof] = ++columns;
    });
  std::vector<std::vector<double>> rows;
  for (const TrussElement& bar : *project.trussElements) {
    rows.emplace_back(columns);
    forEachEnd(bar, [&](std::size_t dof, double part) {
      if (column[dof] > 0) rows.back()[column[dof] - 1] += part;
    });
  }
  std::size_t rank = 0;
  for (std::size_t c = 0; c < columns; ++c) {
    const auto pivot = std::ranges::max_element(rows.begin() + static_cast<std::ptrdiff_t>(rank), rows.end(), {},
                                                [c](const auto& row) { return std::abs(row[c]); });
    if (pivot == rows.end() || std::abs((*pivot)[c]) < 1e-9) continue;
    std::swap(*pivot, rows[rank]);
    for (std::size_t r = rank + 1; r < rows.size(); ++r) {
      const double factor = rows[r][c] / rows[rank][c];
      for (std::size_t k = c; k < columns; ++k) rows[r][k] -= factor * rows[rank][k];
    }
    ++rank;
  }
  return rank < columns;
}

/// Whether only bars with the same stiffness from beginning to end, and arrays of full length, are in it.
bool isLinear(const Project& project) {
  const auto isPlain = [](const TrussElement& bar) {
    return !bar.isCompressionOnly && !bar.isNonLinear && bar.EAL3 > 1e-6;
  };
  return project.beamElements->empty() && std::ranges::all_of(*project.trussElements, isPlain) &&
         std::ssize(*project.D_I) >= project.nI;
}

bool tellsOfLooseness(const Finding& finding) {
  return finding.title == "Mechanism" || finding.title == "Too few supports" || finding.title == "No supports";
}

/// Does to what the finding names as it says. False if it says nothing that could be done here.
bool mend(Project& project, const Finding& finding) {
  auto& bars = project.trussElements.edit();
  const auto named = [&](std::int64_t position) -> TrussElement& { return bars[static_cast<std::size_t>(position)]; };
  const auto forEachDof = [&](std::size_t entries, auto&& visit) {
    for (const std::int64_t node : finding.nodes)
      for (std::int64_t k = 0; k < dofsPerNode; ++k)
        if (const auto dof = static_cast<std::size_t>(dofsPerNode * node + k); dof < entries) visit(dof);
  };
  if (finding.title == "Compressed non-linear bars")
    for (const std::int64_t position : finding.trussesToMakeLinear) named(position).isNonLinear = false;
  else if (finding.title == "Compression-only bars have dropped out")
    for (const std::int64_t position : finding.trusses) named(position).isCompressionOnly = false;
  else if (finding.title == "Stiffness that is not positive" && !finding.trusses.empty())
    for (const std::int64_t position : finding.trusses) named(position).EAL3 *= -1;
  else if (finding.title == "Loads on supports" || finding.title == "Loads that nothing resists")
    forEachDof(project.F_I->size(), [&](std::size_t dof) { project.F_I.edit()[dof] = 0; });
  else if (finding.title == "Mechanism" || finding.title == "Too few supports" || finding.title == "No supports")
    forEachDof(project.D_I->size(), [&](std::size_t dof) {
      if (dof % dofsPerNode < 3 || finding.title == "Mechanism") project.D_I.edit()[dof] = true;
    });
  else
    return false;
  return true;
}

/// A few hundred structures, or as many as the environment asks for: what is foretold happens, what happens is
/// foretold, and what is named has to do with it.
TEST(RandomStructures, BehaveAsForetold) {
  const char* asked = std::getenv("GAVREL_RANDOM_STRUCTURES");
  const unsigned count = asked != nullptr ? static_cast<unsigned>(std::atoi(asked)) : 250;
  int failures = 0;
  std::map<std::string, int> seen;
  for (unsigned seed = 1; seed <= count && failures < 20; ++seed) {
    testing::internal::CaptureStdout();  // warnings of bars without length
    const auto project = Draw(seed).structure();
    testing::internal::GetCapturedStdout();
    const auto happens = consequenceOfSolving(*project);
    const auto check = StructureCheck::inspectAndSolve(*project);
    const auto& findings = check.findings;
    std::string texts;
    for (const Finding& finding : findings) {
      texts +=
          "\n  " + std::string(describeConsequence(finding.consequence)) + ": " + finding.title + ": " + finding.text;
      ++seen[finding.title];
    }
    const auto fail = [&](const std::string& what) {
      ADD_FAILURE() << "structure " << seed << ": " << what << texts;
      ++failures;
    };
    const auto foretold = findings.empty() ? Doubtful : findings.front().consequence;
    if (foretold != (foretold == Meaningless && happens == Doubtful ? Meaningless : happens))
      fail("a solve: " + std::string(describeConsequence(happens)));
    if (foretold != EndsProgram && isLinear(*project) &&
        isMechanism(*project) != (std::ranges::count_if(findings, tellsOfLooseness) > 0))
      fail(isMechanism(*project) ? "is a mechanism" : "is no mechanism");
    for (const Finding& finding : findings) {
      const auto mended = project->copy();
      if (!mend(*mended, finding)) continue;
      const auto after = StructureCheck::inspectAndSolve(*mended).findings;
      if (std::ranges::count(after, finding.text, &Finding::text) > 0) fail("not mended: " + finding.title);
    }
  }
  if (asked != nullptr)
    for (const auto& [title, times] : seen) std::printf("%6d  %s\n", times, title.c_str());
}

}  // namespace
