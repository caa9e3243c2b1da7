#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <filesystem>

#include "CommandLine/Commands.h"
#include "CommandLine/Failures.h"
#include "CommandLine/FileName.h"
#include "CommandLine/PictureSize.h"
#include "DataModel/ArrayLengths.h"
#include "Exchange/Export.h"
#include "Platform/Console.h"
#include "Platform/Destination.h"
#include "Platform/OutputFiles.h"
#include "Platform/ShownText.h"

namespace gavrel {

namespace {

struct ExportOptions {
  std::string model;
  std::string nodes;
  std::string elements;
  std::string vtu;
  std::string png;
  std::string size;
  bool strain = false;
  bool unsolved = false;
};

/// A path by which the program that is started can write the picture. Its standard output is another than this one's.
std::string pathForAnother(const std::string& picture) {
  const auto own = ownDescriptor(picture);
  return own ? descriptorPath(::dup(*own)).string() : picture;
}

/// Whether the model can be read only once, as from a pipe, so that the window's program cannot read it again.
bool isReadOnce(const std::string& model) {
  std::error_code unknown;
  const auto status = std::filesystem::status(model, unknown);
  return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
}

/// Has the window's program draw the picture. It is looked for beside this program, then in PATH. Its output is
/// dropped, and it ends when this program ends.
int drawPicture(const ExportOptions& options) {
  std::vector<std::string> words{"gavrel", "--screenshot", pathForAnother(options.png)};
  if (!options.size.empty()) words.insert(words.end(), {"--size", options.size});
  if (options.strain) words.emplace_back("--strain");
  if (!options.unsolved) words.emplace_back("--solve");
  words.insert(words.end(), {"--", options.model});
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);

  std::error_code unknown;
  const auto beside = std::filesystem::read_symlink("/proc/self/exe", unknown).parent_path() / "gavrel";
  std::fflush(stdout);
  const pid_t child = ::fork();
  if (child == 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (std::freopen("/dev/null", "w", stdout) == nullptr) ::_exit(exitStatus::failure);
    ::execv(beside.c_str(), arguments.data());
    ::execvp("gavrel", arguments.data());
    std::fputs("No picture: the program gavrel, which draws it, was not found.\n", stderr);
    ::_exit(exitStatus::failure);
  }
  int status = 0;
  if (child < 0 || ::waitpid(child, &status, 0) < 0)
    return printFailure("No picture", {"a program could not be started"});
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? exitStatus::success : exitStatus::failure;
}

int exportModel(const ExportOptions& options) {
  if (const auto refused = whyNotWritable({options.nodes, options.elements, options.vtu, options.png}, {options.model}))
    return printFailure("Failed to export", *refused);
  if (!options.png.empty() && isReadOnce(options.model))
    return printFailure("No picture", {shownPath(options.model) + " is no regular file, and --png reads it twice"});
  const auto loaded = readOrPrintFailure(options.model);
  if (!loaded) return exitStatus::failure;
  Project& project = *loaded;
  for (const auto& misfit : ArrayLengths::check(project).misfits)
    printWarning(misfit.text() + "; the files have what belongs to nodes");
  if (!options.unsolved) project.Solve();

  using Write = std::optional<Failure> (*)(const Project&, const std::filesystem::path&, Results);
  const auto results = options.unsolved ? Results::leftOut : Results::written;
  const std::pair<const std::string&, Write> files[] = {
      {options.nodes, exportNodes}, {options.elements, exportElements}, {options.vtu, exportVtu}};
  for (const auto& [path, write] : files) {
    if (path.empty()) continue;
    if (const auto failure = write(project, path, results)) return printFailure("Failed to export", *failure);
  }
  return options.png.empty() ? exitStatus::success : drawPicture(options);
}

}  // namespace

void addExportCommand(CLI::App& app, int& status) {
  auto* command = app.add_subcommand("export", "Solve a project and write its results for other programs");
  auto options = std::make_shared<ExportOptions>();
  command->add_option("MODEL", options->model, "Project file")->required()->check(fileName());
  auto* files = command->add_option_group("files");
  files->add_option("--nodes", options->nodes, "Table of nodes with displacements (CSV)")->check(fileName());
  files->add_option("--elements", options->elements, "Table of elements with strains and forces (CSV)")
      ->check(fileName());
  files->add_option("--vtu", options->vtu, "Grid for ParaView (VTK XML)")->check(fileName());
  auto* png = files->add_option("--png", options->png, "Picture (PNG); needs a display and the program gavrel")
                  ->check(fileName());
  files->require_option(1, 0);
  command->add_option("--size", options->size, "Size of the picture in pixels (1600x1000)")
      ->type_name("WxH")
      ->check(pictureSize())
      ->needs(png);
  command->add_flag("--strain", options->strain, "Colour the picture's bars by strain")->needs(png);
  command->add_flag("--unsolved", options->unsolved, "Do not solve: results are left out");
  command->footer(
      "Example:\n  gavrel-cli export bridge.json --nodes nodes.csv --elements elements.csv --vtu bridge.vtu");
  command->callback([options, &status] { status = exportModel(*options); });
}

}  // namespace gavrel
