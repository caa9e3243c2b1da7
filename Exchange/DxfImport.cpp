#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <set>

#include "Exchange/Draft.h"
#include "Exchange/DxfEntities.h"
#include "Exchange/Places.h"
#include "Platform/ShownText.h"

namespace gavrel {

namespace {

/// A row of points that lines join.
struct Path {
  std::vector<Vector3> points;
  bool isClosed = false;
  bool isBent = false;  // some of its pieces are arcs
};

constexpr int isClosed = 1;

Path pathOfLightPolyline(const DxfEntity& entity) {
  Path path{{}, entity.flag(70, isClosed)};
  constexpr double missing = std::numeric_limits<double>::quiet_NaN();
  const double height = entity.number(38, 0);
  entity.forEachGroup([&](const DxfGroup& group) {
    if (group.code == 10) path.points.push_back({group.number(), missing, height});
    if (group.code == 20 && !path.points.empty()) path.points.back().y = group.number();
    if (group.code == 42) path.isBent = path.isBent || group.number() != 0;
  });
  for (const Vector3& point : path.points)
    if (std::isnan(point.y)) entity.lacks(20);
  return path;
}

/// How many entities were left out, by their name and the reason.
class LeftOut {
 public:
  void add(std::string_view name, const char* why) {
    constexpr std::size_t maxKinds = 100;  // kinds of entities; a sound drawing has fewer
    const std::string what = shownText(name) + why;
    const auto found = counts_.find(what);
    if (found == counts_.end() && counts_.size() == maxKinds)
      ++others_;
    else
      ++counts_[what];
  }

  template <class Visit>
  void forEach(Visit&& visit) const {
    for (const auto& [what, count] : counts_) visit(count, what);
    visit(others_, "entities of further kinds left out.");
  }

 private:
  std::map<std::string, std::int64_t> counts_;
  std::int64_t others_ = 0;
};

/// The lines of a drawing.
std::vector<Path> readPaths(std::string_view dxf, LeftOut& leftOut) {
  constexpr const char* notLines = " left out: not made of straight lines in space.";
  constexpr const char* onPaper = " left out: on the sheet of paper, not in space.";
  constexpr int isMesh = 16 | 64;
  constexpr int isInSpace = 8;
  constexpr int isControlPoint = 16;
  std::vector<Path> paths;
  Path* open = nullptr;  // the polyline whose vertices follow
  DxfEntities entities(dxf);
  for (DxfEntity entity; entities.next(entity);) {
    if (entity.flag(67, 1) && entity.name != "VERTEX" && entity.name != "SEQEND") {
      leftOut.add(entity.name, onPaper);
    } else if (entity.name == "LINE") {
      paths.push_back({{entity.point(10), entity.point(11)}});
    } else if (entity.name == "LWPOLYLINE" && !entity.isTilted()) {
      paths.push_back(pathOfLightPolyline(entity));
    } else if (entity.name == "POLYLINE") {
      const bool taken = !entity.flag(70, isMesh) && (entity.flag(70, isInSpace) || !entity.isTilted());
      if (taken) paths.push_back({{}, entity.flag(70, isClosed)});
      open = taken ? &paths.back() : nullptr;
      if (!taken) leftOut.add(entity.name, notLines);
      continue;
    } else if (entity.name == "VERTEX") {
      if (open == nullptr || entity.flag(70, isControlPoint)) continue;
      open->points.push_back(entity.point(10));
      open->isBent = open->isBent || entity.number(42, 0) != 0;
      continue;
    } else if (entity.name != "SEQEND") {
      leftOut.add(entity.name, notLines);
    }
    open = nullptr;
  }
  return paths;
}

double measureExtent(const std::vector<Path>& paths) {
  double extent = 0;
  for (const Path& path : paths)
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
  LeftOut leftOut;
  auto paths = readPaths(dxf, leftOut);
  std::erase_if(paths, [](const Path& path) { return path.points.empty(); });
  const auto remark = [&draft](auto count, const std::string& what) {
    if (count > 0) draft.remarks.push_back(std::to_string(count) + " " + what);
  };
  leftOut.forEach(remark);
  remark(std::ranges::count(paths, true, &Path::isBent), "polylines with arcs: the arcs became straight.");

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
  for (const Path& path : paths) {
    for (std::size_t i = 1; i < path.points.size(); ++i) join(path.points[i - 1], path.points[i]);
    if (path.isClosed && path.points.size() > 2) join(path.points.back(), path.points.front());
  }
  remark(withoutLength, "lines without length left out.");
  remark(repeated, "lines left out that join two nodes again.");
}

}  // namespace gavrel
