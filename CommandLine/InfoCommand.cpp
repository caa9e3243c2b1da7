#include <cstdio>

#include "CommandLine/Commands.h"
#include "CommandLine/ModelFacts.h"
#include "DataModel/ProjectFile.h"

namespace {

struct InfoOptions {
  std::string model;
  bool json = false;
};

int info(const InfoOptions& options) {
  const auto loaded = readProject(options.model);
  if (!loaded) {
    std::fprintf(stderr, "Failed to load project: %s\n", loaded.failure().reason.c_str());
    return exitStatus::failure;
  }
  const ModelFacts facts = ModelFacts::of(**loaded);
  std::fputs((options.json ? facts.toJson() : facts.toText()).c_str(), stdout);
  return exitStatus::success;
}

}  // namespace

void addInfoCommand(CLI::App& app, int& status) {
  auto* command = app.add_subcommand("info", "Describe a project: counts, extents, loads and likely mistakes");
  auto options = std::make_shared<InfoOptions>();
  command->add_option("MODEL", options->model, "Project file")->required();
  command->add_flag("--json", options->json, "Print one JSON object for scripts");
  command->footer("Example:\n  gavrel-cli info Examples/ten-bar-truss.json --json");
  command->callback([options, &status] { status = info(*options); });
}
