#include <cstdio>
#include <new>

#include "CommandLine/Commands.h"
#include "CommandLine/Failures.h"
#include "CommandLine/FileName.h"
#include "Diagnosis/StructureCheck.h"
#include "Platform/JsonWriter.h"

namespace gavrel {

namespace {

struct CheckOptions {
  std::string model;
  bool json = false;
};

std::string toText(const std::vector<Finding>& findings) {
  std::string text;
  for (const Finding& finding : findings)
    text += std::string(describeConsequence(finding.consequence)) + ": " + finding.title + "\n  " + finding.text + "\n";
  if (findings.empty()) return "Nothing found: the structure can be solved.\n";
  text += findings.size() == 1 ? "1 finding" : std::to_string(findings.size()) + " findings";
  return text + (isSerious(findings.front()) ? "\n" : ", but the structure can be solved\n");
}

std::string toJson(const std::vector<Finding>& findings) {
  JsonWriter json;
  const auto text = [&json](std::string_view key, std::string_view value) {
    json.key(key);
    json.value(value);
  };
  const auto positions = [&json](std::string_view key, const std::vector<std::int64_t>& list) {
    json.key(key);
    json.beginArray();
    for (const std::int64_t position : list) json.value(position);
    json.end();
  };
  json.beginArray();
  for (const Finding& finding : findings) {
    json.beginObject();
    text("consequence", describeConsequence(finding.consequence));
    text("title", finding.title);
    text("text", finding.text);
    positions("nodes", finding.nodes);
    positions("trusses", finding.trusses);
    positions("beams", finding.beams);
    json.end();
  }
  json.end();
  return json.take();
}

int check(const CheckOptions& options) {
  const auto project = readOrPrintFailure(options.model);
  if (!project) return exitStatus::failure;
  const auto found = StructureCheck::inspectAndSolve(*project);
  if (found.lacksMemory) throw std::bad_alloc();
  const auto& findings = found.findings;
  std::fputs((options.json ? toJson(findings) : toText(findings)).c_str(), stdout);
  return findings.empty() || !isSerious(findings.front()) ? exitStatus::success : exitStatus::findings;
}

}  // namespace

void addCheckCommand(CLI::App& app, int& status) {
  auto* command = app.add_subcommand("check", "Find faults and likely mistakes in a project, and say what to do");
  auto options = std::make_shared<CheckOptions>();
  command->add_option("MODEL", options->model, "Project file")->required()->check(fileName());
  command->add_flag("--json", options->json, "Print one JSON array for scripts");
  command->footer("Example:\n  gavrel-cli check Examples/ten-bar-truss.json");
  command->callback([options, &status] { status = check(*options); });
}

}  // namespace gavrel
