#include "Exchange/DxfBlocks.h"

#include <algorithm>
#include <cmath>

#include "Platform/ShownText.h"

namespace gavrel {

namespace {

constexpr int maxDepth = 100;

bool isFinite(const Vector3& point) {
  return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

void place(const DxfInsert& insert, const Placement& outer, std::vector<DxfPath>& paths) {
  for (std::int64_t row = 0; row < insert.rows; ++row) {
    for (std::int64_t column = 0; column < insert.columns; ++column) {
      Placement inner = insert.first;
      inner.origin =
          inner.origin + insert.columnStep * static_cast<double>(column) + insert.rowStep * static_cast<double>(row);
      const Placement placement = outer.place(inner);
      for (DxfPath path : insert.block->contents.paths) {
        for (Vector3& point : path.points) {
          point = placement.place(point);
          if (!isFinite(point)) insert.place.refuse("the INSERT puts a point further out than numbers reach");
        }
        paths.push_back(std::move(path));
      }
      for (const DxfInsert& within : insert.block->contents.inserts) place(within, placement, paths);
    }
  }
}

}  // namespace

void DxfBlocks::add(const DxfEntity& beginning) {
  if (beginning.has(2)) blocks_.try_emplace(lower(beginning.text(2)), DxfBlock{beginning});
}

DxfBlock* DxfBlocks::find(const DxfInsert& insert, int depth, DxfRemarks& remarks) {
  constexpr int isElsewhere = 4 | 8;
  const auto found = blocks_.find(lower(insert.name));
  if (found == blocks_.end()) {
    remarks.add("INSERT", " left out: its block is not in the drawing.");
    return nullptr;
  }
  DxfBlock& block = found->second;
  if (block.beginning.flag(70, isElsewhere)) {
    remarks.add("INSERT", " left out: its block is in another file.");
    return nullptr;
  }
  if (block.isBeingRead) insert.place.refuse("the block " + shownQuoted(insert.name) + " is inserted in itself");
  if (depth + std::max(1, block.depth) > maxDepth)
    insert.place.refuse("more than " + std::to_string(maxDepth) + " blocks stand in one another");
  if (block.depth == 0) read(block, depth + 1, remarks);
  return &block;
}

void DxfBlocks::read(DxfBlock& block, int depth, DxfRemarks& remarks) {
  block.isBeingRead = true;
  DxfContents& contents = block.contents;
  DxfEntities entities(block.beginning);
  for (DxfEntity entity; entities.next(entity) && entity.section == block.beginning.section;) {
    if (entity.name == "ENDBLK" || entity.name == "BLOCK") break;
    contents.add(entity, remarks);
  }
  contents.finish(remarks);
  std::erase_if(contents.paths, [](const DxfPath& path) { return path.lineCount() == 0; });
  if (block.beginning.has(10)) {
    const Vector3 base = block.beginning.point(10);
    for (DxfPath& path : contents.paths)
      for (Vector3& point : path.points) point = point - base;
    for (DxfInsert& insert : contents.inserts) insert.first.origin = insert.first.origin - base;
  }
  for (const DxfPath& path : contents.paths) block.lineCount += path.lineCount();
  block.lineCount += countInserted(contents, depth, remarks);
  for (const DxfInsert& insert : contents.inserts) block.depth = std::max(block.depth, insert.block->depth);
  ++block.depth;
  block.isBeingRead = false;
}

std::int64_t DxfBlocks::countInserted(DxfContents& contents, int depth, DxfRemarks& remarks) {
  std::int64_t lines = 0;
  for (DxfInsert& insert : contents.inserts) {
    const DxfBlock* block = find(insert, depth, remarks);
    if (block == nullptr || block->lineCount == 0) continue;
    if (insert.columns * insert.rows > (maxLines_ - lines) / block->lineCount)
      insert.place.refuse("with this INSERT, the blocks have more than " + std::to_string(maxLines_) + " lines");
    insert.block = block;
    lines += insert.columns * insert.rows * block->lineCount;
  }
  std::erase_if(contents.inserts, [](const DxfInsert& insert) { return insert.block == nullptr; });
  return lines;
}

void DxfBlocks::placeInserted(DxfContents& contents, DxfRemarks& remarks) {
  countInserted(contents, 0, remarks);
  for (const DxfInsert& insert : contents.inserts) place(insert, {}, contents.paths);
}

}  // namespace gavrel
