#include <cstdio>

#include "CommandLine/Commands.h"
#include "CommandLine/Failures.h"
#include "CommandLine/FileName.h"
#include "CommandLine/ModelFacts.h"

namespace gavrel {

namespace {

struct InfoOptions {
  std::string model;
  bool json = false;
};

int info(const InfoOptions& options) {
  const auto project = readOrPrintFailure(options.model);
  if (!project) return exitStatus::failure;
  const ModelFacts facts = ModelFacts::gather(*project);
  std::fputs((options.json ? facts.toJson() : facts.toText()).c_str(), stdout);
  return exitStatus::success;
}

}  // namespace

void addInfoCommand(CLI::App& app, int& status) {
  auto* command = app.add_subcommand("info", "Describe a project: counts, extents, loads and likely mistakes");
  auto options = std::make_shared<InfoOptions>();
  command->add_option("MODEL", options->model, "Project file")->required()->check(fileName());
  command->add_flag("--json", options->json, "Print one JSON object for scripts");
  command->footer("Example:\n  gavrel-cli info Examples/ten-bar-truss.json --json");
  command->callback([options, &status] { status = info(*options); });
}

}  // namespace gavrel
