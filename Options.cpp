#include "Options.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <string>

#include "Platform/NumberText.h"

namespace {

constexpr int usageError = 64;
constexpr int largestPicture = 16384;  // pixels a side, what every graphics driver takes

/// "1600x1000" as width and height.
std::string readSize(const std::string& text, Options& options) {
  int width = 0;
  int height = 0;
  char rest = 0;
  if (std::sscanf(text.c_str(), "%dx%d%c", &width, &height, &rest) != 2 || width < 1 || height < 1 ||
      width > largestPicture || height > largestPicture)
    return "a size is WIDTHxHEIGHT in pixels, each from 1 to " + std::to_string(largestPicture) + ", not " + text;
  options.width = width;
  options.height = height;
  return {};
}

std::string isLength(const std::string& text) {
  const auto number = parseNumber(text);
  return number && std::isfinite(*number) && *number >= 0 ? "" : "a length is a number from 0, not " + text;
}

}  // namespace

std::variant<Options, int> readOptions(int argc, char** argv, const std::string& version) {
  Options options;
  CLI::App app{"Gavrel: three-dimensional frameworks of bars and beams, built by clicking and solved"};
  app.set_version_flag("--version", "gavrel " + version);
  app.footer(
      "Example:\n  gavrel Examples/warren-truss.json\n  gavrel --screenshot truss.png --solve --strain truss.json");

  app.add_option("MODEL.json", options.file, "Project to open");
  auto* screenshot = app.add_option("--screenshot", options.screenshot,
                                    "Draw the project to this PNG file instead of opening a window")
                         ->type_name("OUT.png");
  app.add_option_function<std::string>(
         "--size",
         [&options](const std::string& text) {
           if (auto fault = readSize(text, options); !fault.empty()) throw CLI::ValidationError("--size", fault);
         },
         "Size of the picture in pixels (1600x1000)")
      ->type_name("WxH")
      ->needs(screenshot);
  app.add_option("--magnification", options.magnification, "Drawn length of the largest displacement (1)")
      ->check(isLength)
      ->needs(screenshot);
  app.add_flag("--strain", options.strain, "Colour bars by strain")->needs(screenshot);
  app.add_flag("--solve", options.solve, "Calculate before drawing")->needs(screenshot);

  constexpr const char* hidden = "";
  app.add_option("--update-failed", options.updateFailure)->group(hidden);

  try {
    app.parse(argc, argv);
    if (options.screenshot && !options.file) throw CLI::RequiredError("MODEL.json");
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : usageError;
  }
  return options;
}
