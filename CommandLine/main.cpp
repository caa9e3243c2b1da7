#include <cstdio>
#include <exception>
#include <iostream>
#include <sstream>

#include "CommandLine/Commands.h"
#include "Platform/KernelResources.h"
#include "Platform/ShownText.h"
#include "Platform/Signals.h"

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
    std::stringstream lines;
    const int code = app.exit(error, std::cout, lines);
    for (std::string line; std::getline(lines, line);)
      std::fprintf(stderr, "%s\n", shownText(line, std::string::npos).c_str());
    return code == 0 ? exitStatus::success : exitStatus::usage;
  }
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    std::fputs("Failed to write to standard output.\n", stderr);
    return exitStatus::failure;
  }
  return status;
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
