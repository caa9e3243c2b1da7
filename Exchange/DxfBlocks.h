#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Exchange/DxfContents.h"

namespace gavrel {

/// A block of a drawing; its contents are placed from its base point.
struct DxfBlock {
  DxfEntity beginning;  ///< its entities follow
  DxfContents contents = {};
  std::int64_t lineCount = 0;  ///< with those of the blocks in it
  int depth = 0;               ///< how many blocks stand in one another in it; 0 until it is read
  bool isBeingRead = false;
};

/// The blocks of a drawing by their names, in which letters of either case are the same. Those that are inserted are
/// read, once each.
class DxfBlocks {
 public:
  explicit DxfBlocks(std::int64_t maxLines) : maxLines_(maxLines) {}

  /// Takes a BLOCK; of several with the same name the first.
  void add(const DxfEntity& beginning);

  /// Adds the lines of the blocks that are inserted in `contents`, and in those blocks in turn, to its own. Throws
  /// ImportError for what it cannot read, for a block within itself, for more than 100 blocks in one another, for more
  /// than `maxLines` such lines, and for lines too far out for numbers.
  void placeInserted(DxfContents& contents, DxfRemarks& remarks);

 private:
  DxfBlock* find(const DxfInsert& insert, int depth, DxfRemarks& remarks);
  void read(DxfBlock& block, int depth, DxfRemarks& remarks);
  /// Finds and reads the blocks; drops what has no lines. Returns how many lines there are.
  std::int64_t countInserted(DxfContents& contents, int depth, DxfRemarks& remarks);

  std::map<std::string, DxfBlock> blocks_;
  std::int64_t maxLines_;
};

}  // namespace gavrel
