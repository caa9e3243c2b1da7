#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>

#include "CommandLine/PictureSize.h"

namespace gavrel {

/// What the command line asks for.
struct Options {
  std::optional<std::filesystem::path> file;        ///< project to open
  std::optional<std::filesystem::path> screenshot;  ///< picture to write instead of opening a window
  PictureSize size;
  double magnification = 1.0;
  bool strain = false;
  bool solve = false;
  std::string updateFailure;  ///< why the update was not installed for which the program had ended
};

/// Reads the arguments, or prints help, the version or what is wrong with them and returns the exit code: 0, 64 for
/// arguments that are not understood, or 1 if the help could not be written.
[[nodiscard]] std::variant<Options, int> readOptions(int argc, char** argv, const std::string& version);

}  // namespace gavrel
