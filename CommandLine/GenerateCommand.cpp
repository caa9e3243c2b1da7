#include <cstdio>
#include <functional>

#include "CommandLine/Commands.h"
#include "CommandLine/Failures.h"
#include "CommandLine/FileName.h"
#include "CommandLine/NumberOption.h"
#include "CommandLine/Structures/Bridge.h"
#include "CommandLine/Structures/CableNet.h"
#include "CommandLine/Structures/Dome.h"
#include "CommandLine/Structures/Lattice.h"
#include "CommandLine/Structures/Tower.h"
#include "DataModel/ProjectFile.h"
#include "Platform/OutputFiles.h"

namespace gavrel {

namespace {

const CLI::Validator positive = exactNumber("positive number", [](double value) { return value > 0; });
const CLI::Validator finite = exactNumber("finite number", [](double) { return true; });

/// A subcommand of `generate` while its options are being declared.
template <class Structure>
class Kind {
 public:
  Kind(CLI::App& generate, const std::string& name, const std::string& description, const std::string& example)
      : command_(generate.add_subcommand(name, description)) {
    command_->footer("Example:\n  gavrel-cli generate " + name + " " + example);
    command_->add_option("-o,--output", *output_, "Project file to write")->required()->check(fileName());
    length("--area", structure_->bars.area, "Cross-section area of the bars");
    length("--modulus", structure_->bars.youngModulus, "Young's modulus of the bars");
    command_
        ->add_option_function<std::vector<double>>(
            "--load",
            [load = &structure_->totalLoad](const std::vector<double>& given) {
              *load = {given[0], given[1], given[2]};
            },
            "Total load along x, y and z")
        ->expected(3)
        ->type_name("FX FY FZ")
        ->transform(finite)
        ->default_str(shown(structure_->totalLoad));
  }

  Kind& length(const std::string& name, double& value, const std::string& description) {
    command_->add_option(name, value, description)->transform(positive)->capture_default_str();
    return *this;
  }

  Kind& count(const std::string& name, int& value, int least, int most, const std::string& description) {
    command_->add_option(name, value, description)->transform(exactWholeNumber(least, most))->capture_default_str();
    return *this;
  }

  Kind& flag(const std::string& name, bool& value, const std::string& description) {
    command_->add_flag(name, value, description);
    return *this;
  }

  /// Builds and writes the structure when the command is given; `prepare` may first adjust it to its options.
  void done(int& status, std::function<std::string(Structure&)> prepare = {}) {
    command_->callback([structure = structure_, output = output_, &status, prepare = std::move(prepare)] {
      const std::string objection = prepare ? prepare(*structure) : "";
      if (!objection.empty()) throw CLI::ValidationError(objection);
      auto failed = whyNotWritable({*output}, {});
      if (!failed) failed = writeProject(*structure->build(), *output);
      status = failed ? printFailure("Failed to save project", *failed) : exitStatus::success;
    });
  }

  [[nodiscard]] Structure& structure() { return *structure_; }

 private:
  static std::string shown(const Vector3& v) {
    std::ostringstream text;
    text << '[' << v.x << ' ' << v.y << ' ' << v.z << ']';
    return text.str();
  }

  std::shared_ptr<Structure> structure_ = std::make_shared<Structure>();
  std::shared_ptr<std::string> output_ = std::make_shared<std::string>();
  CLI::App* command_;
};

constexpr int maxCells = 500;
const std::string nonLinearText = "Bars with large displacements and geometric stiffness";

void addLattice(CLI::App& generate, int& status) {
  Kind<Lattice> kind(generate, "lattice", "A cube of n x n x n nodes, one face restrained, the opposite face loaded",
                     "--nodes 10 --output lattice.json");
  auto& lattice = kind.structure();
  kind.count("-n,--nodes", lattice.nodesPerEdge, 2, maxCells, "Nodes along each edge")
      .length("--spacing", lattice.spacing, "Distance between neighbours along an axis")
      .flag("--non-linear", lattice.bars.isNonLinear, nonLinearText)
      .done(status);
}

void addBridge(CLI::App& generate, int& status) {
  Kind<Bridge> kind(generate, "bridge", "A through truss bridge on two Pratt trusses",
                    "--span 60 --panels 12 --output bridge.json");
  auto& bridge = kind.structure();
  kind.length("--span", bridge.span, "Distance between the supports")
      .count("--panels", bridge.panels, 2, 100000, "Panels of each truss")
      .length("--width", bridge.width, "Distance between the trusses")
      .length("--height", bridge.height, "Height of the trusses")
      .flag("--non-linear", bridge.bars.isNonLinear, nonLinearText)
      .done(status);
}

void addTower(CLI::App& generate, int& status) {
  Kind<Tower> kind(generate, "tower", "A four-legged lattice tower under wind and weight",
                   "--height 50 --sections 10 --output tower.json");
  auto& tower = kind.structure();
  kind.length("--height", tower.height, "Height of the tower")
      .count("--sections", tower.sections, 1, 100000, "Sections, one above the other")
      .length("--base-width", tower.baseWidth, "Distance of neighbouring feet")
      .length("--top-width", tower.topWidth, "Distance of neighbouring top nodes")
      .flag("--compression-only", tower.strutDiagonals, "Crossed diagonals that carry no tension")
      .flag("--non-linear", tower.bars.isNonLinear, nonLinearText)
      .done(status);
}

void addDome(CLI::App& generate, int& status) {
  Kind<Dome> kind(generate, "dome", "A Schwedler dome: ribs, rings and crossed diagonals on a spherical cap",
                  "--rings 6 --segments 24 --output dome.json");
  auto& dome = kind.structure();
  kind.length("--span", dome.span, "Diameter of the restrained ring")
      .length("--rise", dome.rise, "Height of the crown above the restrained ring, at most half the span")
      .count("--rings", dome.rings, 1, maxCells, "Rings, the restrained one included")
      .count("--segments", dome.segments, 3, 10000, "Nodes of each ring")
      .flag("--non-linear", dome.bars.isNonLinear, nonLinearText)
      .done(status,
            [](Dome& built) { return built.rise > built.span / 2 ? "--rise is more than half of --span" : ""; });
}

void addCableNet(CLI::App& generate, int& status) {
  Kind<CableNet> kind(generate, "cable-net",
                      "A net with restrained edges that hangs under its load, or stands as a vault",
                      "--cells 20 --sag 1.5 --output net.json");
  auto& net = kind.structure();
  auto linear = std::make_shared<bool>(false);
  auto vault = std::make_shared<bool>(false);
  kind.length("--span", net.span, "Length of each edge")
      .count("--cells", net.cells, 2, maxCells, "Cells along each edge")
      .length("--sag", net.sag, "Depth (height of a vault) in the middle")
      .flag("--linear", *linear, "Bars with small displacements; a net is non-linear otherwise")
      .flag("--vault", *vault, "Turn the net upside down, so that its bars are compressed")
      .done(status, [linear, vault](CableNet& built) -> std::string {
        built.bars.isNonLinear = !*linear;
        if (*vault) built.sag = -built.sag;
        return "";
      });
}

}  // namespace

void addGenerateCommand(CLI::App& app, int& status) {
  auto* generate = app.add_subcommand("generate", "Write a parametric structure as a project file");
  generate->require_subcommand(1);
  generate->footer(
      "Units are consistent; the defaults are steel bars in kN and m.\n\n"
      "Example:\n  gavrel-cli generate bridge --span 60 --panels 12 --output bridge.json");
  addLattice(*generate, status);
  addBridge(*generate, status);
  addTower(*generate, status);
  addDome(*generate, status);
  addCableNet(*generate, status);
}

}  // namespace gavrel
