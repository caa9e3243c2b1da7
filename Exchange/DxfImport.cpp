#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <limits>
#include <map>
#include <sstream>
#include <unordered_map>

#include "Exchange/Draft.h"
#include "Platform/NumberText.h"
#include "Platform/ShownText.h"

namespace {

/// A line with a group code and the line with its value.
struct Group {
  int code;
  std::string value;
  std::size_t line;  // of the value
};

/// One entity: its name, the line with it and the groups up to the next one.
struct Entity {
  std::string name;
  std::size_t line;
  std::vector<Group> groups;

  [[nodiscard]] const Group* find(int code) const {
    const auto found = std::ranges::find(groups, code, &Group::code);
    return found == groups.end() ? nullptr : &*found;
  }
  [[nodiscard]] double number(int code, double otherwise) const {
    const Group* group = find(code);
    return group == nullptr ? otherwise : numberOf(*group);
  }
  [[nodiscard]] static double numberOf(const Group& group) {
    const auto number = parseNumber(group.value);
    if (!number || !std::isfinite(*number))
      throw ImportError("line " + std::to_string(group.line) + ": expected a number, found " +
                        shownQuoted(group.value));
    return *number;
  }
  [[nodiscard]] double coordinate(int code) const {
    const Group* group = find(code);
    if (group == nullptr) lacks(code);
    return numberOf(*group);
  }
  [[noreturn]] void lacks(int code) const {
    throw ImportError("line " + std::to_string(line) + ": the " + shownText(name) + " has no group " +
                      std::to_string(code));
  }
  [[nodiscard]] bool flag(int code, int bits) const {
    const Group* group = find(code);
    if (group == nullptr) return false;
    const double number = numberOf(*group);
    if (number < 0 || number > INT_MAX || number != std::trunc(number))
      throw ImportError("line " + std::to_string(group->line) + ": expected a whole number, found " +
                        shownQuoted(group->value));
    return (static_cast<int>(number) & bits) != 0;
  }
  [[nodiscard]] Vector3 point(int xCode) const {
    return {coordinate(xCode), coordinate(xCode + 10), number(xCode + 20, 0)};
  }
  /// Whether it lies in a plane of its own, in whose axes its points are given.
  [[nodiscard]] bool isTilted() const { return number(210, 0) != 0 || number(220, 0) != 0 || number(230, 1) != 1; }
};

std::string trimmed(const std::string& text) {
  constexpr const char* spaces = " \t\r\n";
  const auto first = text.find_first_not_of(spaces);
  return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(spaces) - first + 1);
}

/// The entities of the drawing itself, without those of its blocks.
std::vector<Entity> entitiesOf(const std::string& dxf) {
  if (dxf.starts_with("AutoCAD Binary DXF")) throw ImportError("line 1: this is a binary DXF file; save it as ASCII");
  std::vector<Entity> entities;
  std::istringstream lines(dxf);
  std::string code;
  std::string value;
  std::size_t number = 0;
  std::string section;
  bool entersSection = false;
  bool ended = false;
  while (!ended && std::getline(lines, code)) {
    const std::string digits = trimmed(code);
    Group group{0, {}, number += 2};
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), group.code);
    if (error != std::errc() || end != digits.data() + digits.size() || !std::getline(lines, value))
      throw ImportError("line " + std::to_string(number - 1) + ": expected a group code and its value, found " +
                        shownQuoted(digits));
    group.value = trimmed(value);
    if (group.code == 0) {
      entersSection = group.value == "SECTION";
      if (group.value == "ENDSEC") section.clear();
      ended = group.value == "EOF";
      if (section == "ENTITIES") entities.push_back({group.value, number, {}});
    } else if (entersSection && group.code == 2) {
      section = group.value;
      entersSection = false;
    } else if (section == "ENTITIES" && !entities.empty()) {
      entities.back().groups.push_back(std::move(group));
    }
  }
  if (!ended) throw ImportError("line " + std::to_string(number) + ": the file ends before its EOF");
  return entities;
}

/// A row of points that lines join.
struct Path {
  std::vector<Vector3> points;
  bool isClosed = false;
  bool isBent = false;  // some of its pieces are arcs
};

constexpr int isClosed = 1;

Path pathOfLightPolyline(const Entity& entity) {
  Path path{{}, entity.flag(70, isClosed)};
  constexpr double missing = std::numeric_limits<double>::quiet_NaN();
  const double height = entity.number(38, 0);
  for (const Group& group : entity.groups) {
    if (group.code == 10) path.points.push_back({Entity::numberOf(group), missing, height});
    if (group.code == 20 && !path.points.empty()) path.points.back().y = Entity::numberOf(group);
    if (group.code == 42) path.isBent = path.isBent || Entity::numberOf(group) != 0;
  }
  for (const Vector3& point : path.points)
    if (std::isnan(point.y)) entity.lacks(20);
  return path;
}

/// The lines of a drawing; counts the entities that it leaves out by name and reason.
std::vector<Path> pathsOf(const std::vector<Entity>& entities, std::map<std::string, int>& leftOut) {
  constexpr const char* notLines = " left out: not made of straight lines in space.";
  constexpr const char* onPaper = " left out: on the sheet of paper, not in space.";
  constexpr int isMesh = 16 | 64;
  constexpr int isInSpace = 8;
  constexpr int isControlPoint = 16;
  std::vector<Path> paths;
  Path* open = nullptr;  // the polyline whose vertices follow
  for (const Entity& entity : entities) {
    if (entity.flag(67, 1) && entity.name != "VERTEX" && entity.name != "SEQEND") {
      ++leftOut[shownText(entity.name) + onPaper];
    } else if (entity.name == "LINE") {
      paths.push_back({{entity.point(10), entity.point(11)}});
    } else if (entity.name == "LWPOLYLINE" && !entity.isTilted()) {
      paths.push_back(pathOfLightPolyline(entity));
    } else if (entity.name == "POLYLINE") {
      const bool taken = !entity.flag(70, isMesh) && (entity.flag(70, isInSpace) || !entity.isTilted());
      if (taken) paths.push_back({{}, entity.flag(70, isClosed)});
      open = taken ? &paths.back() : nullptr;
      if (!taken) ++leftOut[shownText(entity.name) + notLines];
      continue;
    } else if (entity.name == "VERTEX") {
      if (open == nullptr || entity.flag(70, isControlPoint)) continue;
      open->points.push_back(entity.point(10));
      open->isBent = open->isBent || entity.number(42, 0) != 0;
      continue;
    } else if (entity.name != "SEQEND") {
      ++leftOut[shownText(entity.name) + notLines];
    }
    open = nullptr;
  }
  return paths;
}

/// Nodes by their place: those of the project and of the draft, and new ones for places further away than the tolerance
/// from all of them. Kept in cubes with the tolerance as edge, so that near ones are in a cube or beside it.
class Places {
 public:
  Places(Draft& draft, double tolerance) : draft_(draft), tolerance_(tolerance) {
    const std::int64_t existing = draft.project.nodeCount();
    for (std::int64_t node = 0; node < existing; ++node) remember(node, *draft.project.getNodeCoordinates(node));
    for (std::size_t i = 0; i < draft.nodes.size(); ++i)
      remember(existing + static_cast<std::int64_t>(i), draft.nodes[i].place);
  }

  std::int64_t nodeAt(const Vector3& place) {
    const Cube middle = cubeOf(place);
    for (std::int64_t x = middle.x - 1; x <= middle.x + 1; ++x)
      for (std::int64_t y = middle.y - 1; y <= middle.y + 1; ++y)
        for (std::int64_t z = middle.z - 1; z <= middle.z + 1; ++z) {
          const auto found = nodes_.find({x, y, z});
          if (found == nodes_.end()) continue;
          for (const auto& [node, other] : found->second)
            if (length(place - other) <= tolerance_) return node;
        }
    const std::int64_t node = draft_.nodeCount();
    draft_.nodes.push_back({place});
    remember(node, place);
    return node;
  }

 private:
  struct Cube {
    std::int64_t x, y, z;
    bool operator==(const Cube&) const = default;
  };
  struct Hash {
    std::size_t operator()(const Cube& cube) const {
      const auto mix = [](std::size_t seed, std::int64_t number) {
        return (seed ^ static_cast<std::size_t>(number)) * 0x9E3779B97F4A7C15u;
      };
      return mix(mix(mix(0, cube.x), cube.y), cube.z);
    }
  };

  [[nodiscard]] Cube cubeOf(const Vector3& place) const {
    const auto along = [this](double coordinate) {
      constexpr double furthest = 4e18;
      return static_cast<std::int64_t>(std::clamp(std::floor(coordinate / tolerance_), -furthest, furthest));
    };
    return {along(place.x), along(place.y), along(place.z)};
  }
  void remember(std::int64_t node, const Vector3& place) { nodes_[cubeOf(place)].emplace_back(node, place); }

  Draft& draft_;
  double tolerance_;
  std::unordered_map<Cube, std::vector<std::pair<std::int64_t, Vector3>>, Hash> nodes_;
};

double extentOf(const std::vector<Path>& paths) {
  double extent = 0;
  for (const Path& path : paths)
    for (const Vector3& point : path.points) extent = std::max(extent, length(point - paths.front().points.front()));
  return extent;
}

}  // namespace

void addDrawing(const std::string& dxf, Draft& draft) {
  constexpr double relativeTolerance = 1e-6;
  std::map<std::string, int> leftOut;
  auto paths = pathsOf(entitiesOf(dxf), leftOut);
  std::erase_if(paths, [](const Path& path) { return path.points.empty(); });
  const auto remark = [&draft](auto count, const std::string& what) {
    if (count > 0) draft.remarks.push_back(std::to_string(count) + " " + what);
  };
  for (const auto& [what, count] : leftOut) remark(count, what);
  remark(std::ranges::count(paths, true, &Path::isBent), "polylines with arcs: the arcs became straight.");

  const double tolerance = draft.settings.tolerance.value_or(relativeTolerance * extentOf(paths));
  Places places(draft, tolerance > 0 ? tolerance : relativeTolerance);
  std::map<std::pair<std::int64_t, std::int64_t>, int> joined;
  int withoutLength = 0;
  int repeated = 0;
  const auto join = [&](const Vector3& from, const Vector3& to) {
    const std::int64_t start = places.nodeAt(from);
    const std::int64_t end = places.nodeAt(to);
    if (start == end) {
      ++withoutLength;
    } else if (++joined[std::minmax(start, end)] > 1) {
      ++repeated;
    } else {
      draft.members.push_back({.start = start,
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
