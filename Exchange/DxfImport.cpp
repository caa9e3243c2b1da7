#include <algorithm>
#include <limits>
#include <set>
#include <utility>

#include "Exchange/Draft.h"
#include "Exchange/DxfBlocks.h"
#include "Exchange/Places.h"

namespace gavrel {

namespace {

/// The lines of a drawing, those of its own before those of the blocks that are inserted in it.
std::vector<DxfPath> readPaths(std::string_view dxf, std::int64_t maxLinesOfBlocks, DxfRemarks& remarks) {
  DxfContents contents;
  DxfBlocks blocks(maxLinesOfBlocks);
  DxfEntities entities(dxf);
  for (DxfEntity entity; entities.next(entity);) {
    if (entity.section != "BLOCKS")
      contents.add(entity, remarks);
    else if (entity.name == "BLOCK")
      blocks.add(entity);
  }
  contents.finish(remarks);
  blocks.placeInserted(contents, remarks);
  return std::move(contents.paths);
}

double measureExtent(const std::vector<DxfPath>& paths) {
  double extent = 0;
  for (const DxfPath& path : paths)
    for (const Vector3& point : path.points) extent = std::max(extent, distance(point, paths.front().points.front()));
  return std::min(extent, std::numeric_limits<double>::max());
}

/// Those of the nodes of the project and of the draft.
std::vector<Vector3> placesOfNodes(const Draft& draft) {
  std::vector<Vector3> places;
  places.reserve(static_cast<std::size_t>(draft.nodeCount()));
  for (std::int64_t node = 0; node < draft.project.nodeCount(); ++node)
    places.push_back(*draft.project.getNodeCoordinates(node));
  for (const Draft::Node& node : draft.nodes) places.push_back(node.place);
  return places;
}

}  // namespace

void addDrawing(std::string_view dxf, Draft& draft) {
  constexpr double relativeTolerance = 1e-6;
  DxfRemarks remarks;
  const std::vector<DxfPath> paths = readPaths(dxf, draft.settings.maxLinesOfBlocks, remarks);
  const auto remark = [&draft](auto count, const std::string& what) {
    if (count > 0) draft.remarks.push_back(std::to_string(count) + " " + what);
  };
  remarks.forEach(remark);

  const double tolerance = draft.settings.tolerance.value_or(relativeTolerance * measureExtent(paths));
  Places places(placesOfNodes(draft), tolerance > 0 ? tolerance : relativeTolerance);
  const auto findOrAddNode = [&](const Vector3& place) {
    const std::int64_t node = places.findOrAddNode(place);
    if (node == draft.nodeCount()) draft.nodes.push_back({place});
    return node;
  };
  std::set<std::pair<std::int64_t, std::int64_t>> joined;
  std::int64_t withoutLength = 0;
  std::int64_t repeated = 0;
  const auto join = [&](const Vector3& from, const Vector3& to) {
    const std::int64_t start = findOrAddNode(from);
    const std::int64_t end = findOrAddNode(to);
    if (start == end) {
      ++withoutLength;
    } else if (!joined.insert(std::minmax(start, end)).second) {
      ++repeated;
    } else {
      draft.elements.push_back({.start = start,
                                .end = end,
                                .isNonLinear = draft.settings.isNonLinear,
                                .area = draft.settings.area,
                                .youngModulus = draft.settings.youngModulus});
    }
  };
  for (const DxfPath& path : paths) {
    for (std::size_t i = 1; i < path.points.size(); ++i) join(path.points[i - 1], path.points[i]);
    if (path.isClosed && path.points.size() > 2) join(path.points.back(), path.points.front());
  }
  remark(withoutLength, "lines without length left out.");
  remark(repeated, "lines left out that join two nodes again.");
}

}  // namespace gavrel
