#include "Options.h"

#include <CLI/CLI.hpp>
#include <string>

#include "CommandLine/NumberOption.h"
#include "CommandLine/ParseEnd.h"
#include "CommandLine/PictureSize.h"

namespace gavrel {

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
         "--size", [&options](const std::string& text) { options.size = readPictureSize(text).value(); },
         "Size of the picture in pixels (1600x1000)")
      ->type_name("WxH")
      ->check(pictureSize())
      ->needs(screenshot);
  app.add_option("--magnification", options.magnification, "Drawn length of the largest displacement (1)")
      ->transform(exactNumber("length", [](double value) { return value >= 0; }))
      ->needs(screenshot);
  app.add_flag("--strain", options.strain, "Colour bars by strain")->needs(screenshot);
  app.add_flag("--solve", options.solve, "Calculate before drawing")->needs(screenshot);

  constexpr const char* hidden = "";
  app.add_option("--update-failed", options.updateFailure)->group(hidden);

  try {
    app.parse(argc, argv);
    if (options.screenshot && !options.file) throw CLI::RequiredError("MODEL.json");
  } catch (const CLI::ParseError& error) {
    return endAfterParsing(app, error);
  }
  return options;
}

}  // namespace gavrel
