#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <vector>

#include "CommandLine/Commands.h"
#include "CommandLine/Failures.h"
#include "CommandLine/FileName.h"
#include "CommandLine/SolveResult.h"
#include "Platform/AtomicFile.h"
#include "Platform/Console.h"
#include "Platform/NumberText.h"
#include "Platform/OutputFiles.h"
#include "Platform/ShownText.h"

namespace gavrel {

namespace {

struct SolveOptions {
  std::string model;
  std::string output;
  bool strict = false;
  bool summary = false;
};

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

void printSummary(const Project& project, const SolveResult& result, double seconds) {
  const auto show = [](const char* what, const SolveResult::Extreme& extreme, const char* where) {
    if (extreme.index >= 0)
      std::fprintf(stderr, "%-22s %.6g at %s %lld\n", what, extreme.value, where,
                   static_cast<long long>(extreme.index));
  };
  std::fprintf(stderr, "%-22s %s\n", "Project", shownText(*project.name).c_str());
  std::fprintf(stderr, "%-22s %lld nodes, %zu bars, %zu beams\n", "Structure",
               static_cast<long long>(project.nodeCount()), project.trussElements->size(),
               project.beamElements->size());
  std::fprintf(stderr, "%-22s %s after %zu steps, %.3f s\n", "Solution",
               result.converged() ? "converged" : "not converged", result.norms.size(), seconds);
  show("Largest displacement", result.largestDisplacement(), "node");
  show("Largest tension", result.largestTension(), "bar");
  show("Largest compression", result.largestCompression(), "bar");
}

int solve(const SolveOptions& options) {
  constexpr const char* notSaved = "Failed to save result";
  if (const auto refused = whyNotWritable({options.output}, {options.model})) return printFailure(notSaved, *refused);
  const auto loaded = readOrPrintFailure(options.model);
  if (!loaded) return exitStatus::failure;
  Project& project = *loaded;
  const bool showProgress = ::isatty(STDERR_FILENO) != 0;
  const auto start = Clock::now();
  SolveResult result{project, {}};
  project.Solve([&](int step, double norm) {
    result.norms.push_back(norm);
    if (showProgress)
      std::fprintf(stderr, "step %2d   norm %-24s %8.2f s\n", step, numberText(norm).c_str(), secondsSince(start));
  });
  const double seconds = secondsSince(start);

  if (options.summary) printSummary(project, result, seconds);
  if (!options.output.empty()) {
    const auto failed = replaceFile(options.output, [&result](const ByteSink& sink) {
      JsonWriter json(sink);
      result.write(json);
    });
    if (failed) return printFailure(notSaved, *failed);
  }
  if (result.converged()) return exitStatus::success;
  printWarning("the solve did not converge: after " + std::to_string(result.norms.size()) +
               " steps the relative residual norm is " + numberText(result.norms.back()));
  return options.strict ? exitStatus::notConverged : exitStatus::success;
}

}  // namespace

void addSolveCommand(CLI::App& app, int& status) {
  auto* command = app.add_subcommand("solve", "Solve a project and print the relative residual norm of each step");
  auto options = std::make_shared<SolveOptions>();
  command->add_option("MODEL", options->model, "Project file")->required()->check(fileName());
  command->add_option("-o,--output", options->output, "Write displacements, residuals and elements to this JSON file")
      ->check(fileName());
  command->add_flag("--strict", options->strict, "Exit with status 2 if the solve does not converge");
  command->add_flag("--summary", options->summary, "Print a short summary on standard error");
  command->footer("Example:\n  gavrel-cli solve Examples/ten-bar-truss.json --output result.json --strict");
  command->callback([options, &status] { status = solve(*options); });
}

}  // namespace gavrel
