#include "Exchange/DxfContents.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "Platform/ShownText.h"

namespace gavrel {

namespace {

constexpr int isClosed = 1;
constexpr const char* notLines = " left out: not made of straight lines in space.";
constexpr const char* onPaper = " left out: on the sheet of paper, not in space.";

DxfPath readLightPolyline(const DxfEntity& entity) {
  DxfPath path{{}, entity.flag(70, isClosed)};
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

}  // namespace

std::int64_t DxfPath::lineCount() const {
  return std::ssize(points) - (isClosed && points.size() > 2 ? 0 : 1);
}

void DxfRemarks::add(std::string_view name, const char* what) {
  constexpr std::size_t maxKinds = 100;  // kinds of entities; a sound drawing has fewer
  const std::string remark = shownText(name) + what;
  const auto found = counts_.find(remark);
  if (found == counts_.end() && counts_.size() == maxKinds)
    ++others_;
  else
    ++counts_[remark];
}

void DxfContents::add(const DxfEntity& entity, DxfRemarks& remarks) {
  constexpr int isMesh = 16 | 64;
  constexpr int isInSpace = 8;
  constexpr int isControlPoint = 16;
  const bool goesOn = isPolylineOpen_;
  isPolylineOpen_ = false;
  // A block is where it is inserted, wherever it was drawn.
  const bool isOnPaper = entity.section != "BLOCKS" && entity.flag(67, 1);
  if (isOnPaper && entity.name != "VERTEX" && entity.name != "SEQEND") {
    remarks.add(entity.name, onPaper);
  } else if (entity.name == "LINE") {
    paths.push_back({{entity.point(10), entity.point(11)}});
  } else if (entity.name == "LWPOLYLINE" && !entity.isTilted()) {
    paths.push_back(readLightPolyline(entity));
  } else if (entity.name == "POLYLINE") {
    isPolylineOpen_ = !entity.flag(70, isMesh) && (entity.flag(70, isInSpace) || !entity.isTilted());
    if (isPolylineOpen_)
      paths.push_back({{}, entity.flag(70, isClosed)});
    else
      remarks.add(entity.name, notLines);
  } else if (entity.name == "VERTEX") {
    isPolylineOpen_ = goesOn;
    if (!goesOn || entity.flag(70, isControlPoint)) return;
    paths.back().points.push_back(entity.point(10));
    paths.back().isBent = paths.back().isBent || entity.number(42, 0) != 0;
  } else if (entity.name == "INSERT") {
    inserts.push_back(DxfInsert::read(entity));
  } else if (entity.name != "SEQEND") {
    remarks.add(entity.name, notLines);
  }
}

void DxfContents::finish(DxfRemarks& remarks) {
  std::erase_if(paths, [](const DxfPath& path) { return path.points.empty(); });
  remarks.addBent(std::ranges::count(paths, true, &DxfPath::isBent));
}

}  // namespace gavrel
