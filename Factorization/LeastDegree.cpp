#include <algorithm>
#include <bit>
#include <limits>

#include "Factorization/Ordering.h"

namespace gavrel {

namespace {

using Word = std::uint64_t;
constexpr std::int32_t bits = 64;

/// Sets of the numbers of a part and what borders on it, one for each vertex of the part.
class Neighbourhoods {
 public:
  Neighbourhoods(std::size_t sets, std::int32_t members) : words_((members + bits - 1) / bits), all_(sets * words_) {}

  void insert(std::int32_t set, std::int32_t member) { row(set)[member / bits] |= Word{1} << (member % bits); }
  [[nodiscard]] bool contains(std::int32_t set, std::int32_t member) {
    return (row(set)[member / bits] >> (member % bits) & 1) != 0;
  }
  void remove(std::int32_t set, std::int32_t member) { row(set)[member / bits] &= ~(Word{1} << (member % bits)); }
  void unite(std::int32_t set, std::int32_t other) {
    for (std::int32_t i = 0; i < words_; ++i) row(set)[i] |= row(other)[i];
  }
  [[nodiscard]] std::int32_t count(std::int32_t set) {
    std::int32_t sum = 0;
    for (std::int32_t i = 0; i < words_; ++i) sum += std::popcount(row(set)[i]);
    return sum;
  }

 private:
  Word* row(std::int32_t set) { return all_.data() + static_cast<std::ptrdiff_t>(set) * words_; }

  std::int32_t words_;
  std::vector<Word> all_;
};

}  // namespace

void orderByLeastDegree(const NodeGraph& graph, std::span<std::int32_t> part, std::vector<std::int32_t>& numbers) {
  // Number the part, then what borders on it.
  const auto inside = static_cast<std::int32_t>(part.size());
  std::vector<std::int32_t> border;
  for (std::int32_t i = 0; i < inside; ++i) numbers[part[i]] = i;
  for (const std::int32_t vertex : part) {
    for (const std::int32_t other : graph.neighboursAt(vertex)) {
      if (numbers[other] >= 0) continue;
      numbers[other] = inside + static_cast<std::int32_t>(border.size());
      border.push_back(other);
    }
  }
  const std::int32_t members = inside + static_cast<std::int32_t>(border.size());

  Neighbourhoods adjacent(part.size(), members);
  for (std::int32_t i = 0; i < inside; ++i) {
    adjacent.insert(i, i);
    for (const std::int32_t other : graph.neighboursAt(part[i])) adjacent.insert(i, numbers[other]);
  }
  for (const std::int32_t vertex : part) numbers[vertex] = -1;
  for (const std::int32_t vertex : border) numbers[vertex] = -1;

  std::vector<std::int32_t> degree(inside);
  for (std::int32_t i = 0; i < inside; ++i) degree[i] = adjacent.count(i);
  constexpr std::int32_t eliminated = std::numeric_limits<std::int32_t>::max();
  std::vector<std::int32_t> order;
  order.reserve(part.size());
  while (std::ssize(order) < inside) {
    const auto next = static_cast<std::int32_t>(std::ranges::min_element(degree) - degree.begin());
    order.push_back(part[next]);
    degree[next] = eliminated;
    for (std::int32_t i = 0; i < inside; ++i) {
      if (degree[i] == eliminated || !adjacent.contains(next, i)) continue;
      adjacent.unite(i, next);
      adjacent.remove(i, next);
      degree[i] = adjacent.count(i);
    }
  }
  std::ranges::copy(order, part.begin());
}

}  // namespace gavrel
