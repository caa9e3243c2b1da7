#pragma once

#include <string>
#include <vector>

#include "Exchange/DxfEntities.h"

namespace gavrel {

/// Where axes lie in others.
struct Placement {
  Vector3 origin = {};
  Vector3 x = {1, 0, 0};
  Vector3 y = {0, 1, 0};
  Vector3 z = {0, 0, 1};

  /// A direction with its length.
  [[nodiscard]] Vector3 turn(const Vector3& direction) const {
    return x * direction.x + y * direction.y + z * direction.z;
  }
  [[nodiscard]] Vector3 place(const Vector3& point) const { return origin + turn(point); }
  [[nodiscard]] Placement place(const Placement& inner) const {
    return {place(inner.origin), turn(inner.x), turn(inner.y), turn(inner.z)};
  }
};

struct DxfBlock;

/// A block inserted in a drawing or in another block, once or in columns and rows.
struct DxfInsert {
  DxfPlace place;    ///< in the file
  std::string name;  ///< of the block, as it is written
  Placement first;   ///< of the block in the first column and row
  Vector3 columnStep = {};
  Vector3 rowStep = {};
  std::int64_t columns = 1;
  std::int64_t rows = 1;
  const DxfBlock* block = nullptr;  ///< that has this name, once it is read and if it has lines

  /// Reads an INSERT. Throws ImportError for what is not there and for numbers that make no sense.
  [[nodiscard]] static DxfInsert read(const DxfEntity& entity);
};

}  // namespace gavrel
