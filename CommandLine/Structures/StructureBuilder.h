#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "DataModel/Project.h"

namespace gavrel {

/// Section, material and behaviour of the bars that a generator adds. Consistent units; the defaults are a steel bar in
/// kN and m.
struct BarProperties {
  double area = 0.002;
  double youngModulus = 210e6;
  bool isNonLinear = false;
};

/// Builds a project node by node and bar by bar.
class StructureBuilder {
 public:
  StructureBuilder(const std::string& name, const BarProperties& properties)
      : project_(std::make_shared<Project>(name)), properties_(properties) {}

  /// Adds a node and returns its identifier.
  std::int64_t node(const Vector3& coordinates) {
    project_->addNode(coordinates);
    return project_->nodeCount() - 1;
  }

  /// Adds a bar between two nodes of this structure; `isStrut`: one that carries no tension.
  void bar(std::int64_t start, std::int64_t end, bool isStrut = false) {
    auto& trusses = project_->trussElements.edit();
    trusses.emplace_back(std::ssize(trusses), start, end, *project_->getNodeCoordinates(start),
                         *project_->getNodeCoordinates(end), properties_.area, properties_.youngModulus, isStrut,
                         properties_.isNonLinear);
  }

  void restrain(std::int64_t node) { project_->setLoadAndRestraint(node, {}, true, true, true); }

  /// Restrains a node sideways and vertically and leaves it free along x.
  void roller(std::int64_t node) { project_->setLoadAndRestraint(node, {}, false, true, true); }

  /// Loads a free node with its part of the total load.
  void load(std::int64_t node, const Vector3& total, double share) {
    const Vector3 force{total.x * share, total.y * share, total.z * share};
    project_->setLoadAndRestraint(node, force, false, false, false);
  }

  [[nodiscard]] std::shared_ptr<Project> project() const { return project_; }

 private:
  std::shared_ptr<Project> project_;
  BarProperties properties_;
};

}  // namespace gavrel
