#include <cmath>
#include <cstdio>
#include <filesystem>

#include "CommandLine/Commands.h"
#include "CommandLine/Failures.h"
#include "CommandLine/FileName.h"
#include "CommandLine/NumberOption.h"
#include "DataModel/ProjectFile.h"
#include "Exchange/Import.h"
#include "Platform/OutputFiles.h"
#include "Platform/ShownText.h"

namespace gavrel {

namespace {

struct ImportOptions {
  std::vector<std::string> files;
  std::string output;
  std::string into;
  std::string name;
  double tolerance = 0;
  ImportSettings settings;
};

int import(const ImportOptions& options) {
  // The project that is added to may be the one that is written.
  if (const auto refused = whyNotWritable({options.output}, {options.files.begin(), options.files.end()}))
    return printFailure("Failed to save project", *refused);
  const auto project = options.into.empty() ? std::make_shared<Project>() : readOrPrintFailure(options.into);
  if (!project) return exitStatus::failure;
  if (options.into.empty())
    project->name.edit() = shownText(std::filesystem::path(options.files.front()).stem().string(), std::string::npos);
  if (!options.name.empty()) project->name.edit() = options.name;
  ImportSettings settings = options.settings;
  if (options.tolerance > 0) settings.tolerance = options.tolerance;
  const auto outcome = importFiles(*project, {options.files.begin(), options.files.end()}, settings);
  if (!outcome) return printFailure("Failed to import", outcome.failure());
  if (const auto failure = writeProject(*project, options.output))
    return printFailure("Failed to save project", *failure);
  for (const std::string& remark : outcome->remarks) std::printf("%s\n", remark.c_str());
  std::printf("Imported %lld nodes, %lld bars, %lld beams\n", static_cast<long long>(outcome->nodes),
              static_cast<long long>(outcome->trusses), static_cast<long long>(outcome->beams));
  return exitStatus::success;
}

}  // namespace

void addImportCommand(CLI::App& app, int& status) {
  auto* command = app.add_subcommand("import", "Make a project from tables (CSV) and drawings (DXF)");
  auto options = std::make_shared<ImportOptions>();
  const auto finite = exactNumber("finite number", [](double) { return true; });
  const auto positive = exactNumber("positive number", [](double value) { return value > 0; });
  command->add_option("FILES", options->files, "Tables of nodes or elements, drawings")->required()->check(fileName());
  command->add_option("-o,--output", options->output, "Project file to write")->required()->check(fileName());
  command->add_option("--into", options->into, "Project file to add to; without it a new project begins")
      ->check(fileName());
  command->add_option("--name", options->name, "Name of the project; a new one has that of the first file by default");
  command->add_option("--area", options->settings.area, "Cross-section of bars for which a file gives none")
      ->transform(finite)
      ->capture_default_str();
  command->add_option("--modulus", options->settings.youngModulus, "Young's modulus of such bars")
      ->transform(finite)
      ->capture_default_str();
  command->add_flag("--non-linear", options->settings.isNonLinear, "Such bars have large displacements");
  command->add_option("--tolerance", options->tolerance, "Ends of lines no further apart are one node")
      ->transform(positive);
  command->footer("Example:\n  gavrel-cli import nodes.csv elements.csv --output frame.json");
  command->callback([options, &status] { status = import(*options); });
}

}  // namespace gavrel
