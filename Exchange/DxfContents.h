#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "DataModel/Vector3.h"
#include "Exchange/DxfInsert.h"

namespace gavrel {

/// A row of points that lines join.
struct DxfPath {
  std::vector<Vector3> points = {};
  bool isClosed = false;
  bool isBent = false;  ///< some of its pieces are arcs

  /// Needs a point.
  [[nodiscard]] std::int64_t lineCount() const;
};

/// How many entities were left out or taken otherwise than they are drawn, by their name and the reason.
class DxfRemarks {
 public:
  /// Counts one; `what` follows the name in the remark.
  void add(std::string_view name, const char* what);
  void addBent(std::int64_t count) { bent_ += count; }

  /// Calls `visit` with each remark's count, which may be 0, and text.
  template <class Visit>
  void forEach(Visit&& visit) const {
    for (const auto& [what, count] : counts_) visit(count, what);
    visit(others_, std::string("entities of further kinds left out."));
    visit(bent_, std::string("polylines with arcs: the arcs became straight."));
  }

 private:
  std::map<std::string, std::int64_t> counts_;
  std::int64_t others_ = 0;
  std::int64_t bent_ = 0;
};

/// What is drawn in a drawing itself or in one of its blocks.
class DxfContents {
 public:
  /// Adds an entity, or notes why not; those of one drawing or block come in their order. Throws ImportError for what
  /// they lack and for what are no numbers.
  void add(const DxfEntity& entity, DxfRemarks& remarks);
  /// After the last entity.
  void finish(DxfRemarks& remarks);

  std::vector<DxfPath> paths;
  std::vector<DxfInsert> inserts;

 private:
  bool isPolylineOpen_ = false;  // the vertices that follow belong to the last path
};

}  // namespace gavrel
