#include "Factorization/Memory.h"

#include <sys/mman.h>

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace gavrel {

namespace {

constexpr std::int64_t largePage = std::int64_t{1} << 21;

/// Larger arrays of numbers go back to the system at once: few fit any later use, and together they would be as large
/// as what is in use.
constexpr std::int64_t largestKept = std::int64_t{1} << 19;

std::size_t bytesOf(std::int64_t size) {
  return static_cast<std::size_t>(size) * sizeof(double);
}

}  // namespace

NumberArray::NumberArray(std::int64_t size) : size_(size) {
  if (size == 0) return;
  if (size > std::numeric_limits<std::int64_t>::max() / 16) throw std::bad_alloc();
  void* const room =
      ::mmap(nullptr, bytesOf(size), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (room == MAP_FAILED) throw std::bad_alloc();
  if (static_cast<std::int64_t>(bytesOf(size)) >= 2 * largePage) ::madvise(room, bytesOf(size), MADV_HUGEPAGE);
  data_ = static_cast<double*>(room);
}

NumberArray::NumberArray(NumberArray&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}

NumberArray& NumberArray::operator=(NumberArray&& other) noexcept {
  std::swap(data_, other.data_);
  std::swap(size_, other.size_);
  return *this;
}

NumberArray::~NumberArray() {
  if (data_ != nullptr) ::munmap(data_, bytesOf(size_));
}

bool hasRoomFor(std::int64_t size) {
  try {
    const NumberArray room(size);
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

void NumberStack::reset(std::int64_t capacity) {
  top_ = 0;
  if (capacity <= room_.size()) return;
  room_ = NumberArray();
  room_ = NumberArray(capacity);
}

double* NumberStack::push(std::int64_t size) {
  double* const begin = room_.data() + top_;
  top_ += size;
  return begin;
}

double* NumberPool::take(std::int64_t size) {
  const std::lock_guard lock(mutex_);
  Block* best = nullptr;
  for (Block& block : blocks_) {
    const std::int64_t room = block.numbers.size();
    if (!block.isTaken && room >= size && room <= 2 * size && (best == nullptr || room < best->numbers.size()))
      best = &block;
  }
  if (best == nullptr) {
    blocks_.push_back({NumberArray(size), false});
    best = &blocks_.back();
  }
  best->isTaken = true;
  return best->numbers.data();
}

void NumberPool::giveBack(const double* data) {
  NumberArray unused;  // unmapped after the lock is given up
  const std::lock_guard lock(mutex_);
  const auto block = std::ranges::find(blocks_, data, [](const Block& b) { return b.numbers.data(); });
  block->isTaken = false;
  if (block->numbers.size() <= largestKept) return;
  unused = std::move(block->numbers);
  blocks_.erase(block);
}

void NumberPool::giveAllBack() {
  for (Block& block : blocks_) block.isTaken = false;
}

}  // namespace gavrel
