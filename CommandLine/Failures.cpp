#include "CommandLine/Failures.h"

#include <cstdio>

#include "CommandLine/Commands.h"
#include "DataModel/ProjectFile.h"

namespace gavrel {

int printFailure(const char* what, const Failure& failure) {
  std::fprintf(stderr, "%s: %s\n", what, failure.reason.c_str());
  return exitStatus::failure;
}

std::shared_ptr<Project> readOrPrintFailure(const std::string& file) {
  const auto read = readProject(file);
  if (read) return *read;
  printFailure("Failed to load project", read.failure());
  return nullptr;
}

}  // namespace gavrel
