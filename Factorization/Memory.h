#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

namespace gavrel {

/// Room for numbers, not cleared. Throws std::bad_alloc where there is none. Large rooms are made of large pages where
/// the system has them.
class NumberArray {
 public:
  NumberArray() = default;
  explicit NumberArray(std::int64_t size);
  NumberArray(NumberArray&& other) noexcept;
  NumberArray& operator=(NumberArray&& other) noexcept;
  ~NumberArray();

  [[nodiscard]] double* data() const { return data_; }
  [[nodiscard]] std::int64_t size() const { return size_; }

 private:
  double* data_ = nullptr;
  std::int64_t size_ = 0;
};

/// Whether a NumberArray of this size could be made now.
[[nodiscard]] bool hasRoomFor(std::int64_t size);

/// Numbers that are taken last are given back first.
class NumberStack {
 public:
  /// Empties the stack and makes room for so many numbers in all.
  void reset(std::int64_t capacity);
  [[nodiscard]] double* push(std::int64_t size);
  void pop(std::int64_t size) { top_ -= size; }

 private:
  NumberArray room_;
  std::int64_t top_ = 0;
};

/// Arrays that several threads take and give back in any order, and that are used again.
class NumberPool {
 public:
  [[nodiscard]] double* take(std::int64_t size);
  void giveBack(const double* data);
  void giveAllBack();

 private:
  struct Block {
    NumberArray numbers;
    bool isTaken;
  };

  std::mutex mutex_;
  std::vector<Block> blocks_;
};

}  // namespace gavrel
