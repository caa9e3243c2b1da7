#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "Exchange/CsvTable.h"
#include "Exchange/Import.h"

namespace gavrel {

/// The nodes and elements that files will add to a project. Nodes are numbered as they will be in the project.
struct Draft {
  struct Node {
    Vector3 place;
    std::array<double, dofsPerNode> load{};
    std::array<bool, dofsPerNode> restrained{};
  };
  struct Element {
    std::int64_t start = 0;
    std::int64_t end = 0;
    bool isBeam = false;
    bool isCompressionOnly = false;
    bool isNonLinear = false;
    double area = 0;
    double youngModulus = 0;
    double shearModulus = 0;
    double inertiaY = 0;
    double inertiaZ = 0;
  };

  const Project& project;
  const ImportSettings& settings;
  std::vector<Node> nodes = {};
  std::vector<Element> elements = {};
  std::vector<std::string> remarks = {};
  /// The nodes of the table of nodes by its own numbers; absent without such a table.
  std::optional<std::map<std::int64_t, std::int64_t>> numbers = {};

  [[nodiscard]] std::int64_t nodeCount() const { return project.nodeCount() + std::ssize(nodes); }
};

/// Why a file cannot be imported; `what` also says where in it.
struct ImportError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Each throws ImportError.
void addNodes(const CsvTable& table, Draft& draft);
void addElements(const CsvTable& table, Draft& draft);
void addDrawing(std::string_view dxf, Draft& draft);

}  // namespace gavrel
