#include <cstdio>
#include <exception>

#include "CommandLine/Commands.h"
#include "CommandLine/ParseEnd.h"
#include "Platform/KernelResources.h"
#include "Platform/ShownText.h"
#include "Platform/Signals.h"

using namespace gavrel;

namespace {

int run(int argc, char** argv) {
  CLI::App app{"Static analysis of three-dimensional frameworks of bars and beams"};
  app.set_version_flag("--version", "gavrel-cli " GAVREL_VERSION);
  app.require_subcommand(1);
  app.footer(
      "Example:\n  gavrel-cli generate dome --output dome.json\n  gavrel-cli info dome.json\n"
      "  gavrel-cli solve dome.json --output result.json\n\nEach command has a --help of its own.");
  int status = exitStatus::success;
  addSolveCommand(app, status);
  addCheckCommand(app, status);
  addInfoCommand(app, status);
  addGenerateCommand(app, status);
  addImportCommand(app, status);
  addExportCommand(app, status);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return endAfterParsing(app, error);
  }
  const int flushed = flushOutput();
  return flushed == exitStatus::success ? status : flushed;
}

[[gnu::section(".preinit_array"), gnu::used]] void (*const beforeLibraries)(int, char**, char**) = fitThreadsToMemory;

}  // namespace

int main(int argc, char** argv) {
  keepFilesWholeOnSignals();
  try {
    return run(argc, argv);
  } catch (const std::bad_alloc&) {
    std::fputs("Not enough memory.\n", stderr);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "Unexpected error: %s\n", shownText(error.what()).c_str());
  }
  return exitStatus::failure;
}
