#include "Factorization/SeparatorRefinement.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <queue>
#include <tuple>

#include "Factorization/PlaneCut.h"

namespace gavrel {

namespace {

/// A pass ends after so many moves, and further ones for this part of the separator, that have led to nothing better.
constexpr std::size_t patience = 20;
constexpr std::size_t patiencePart = 8;
constexpr int passes = 4;

constexpr std::array<Side, 2> bothSides{Side::Low, Side::High};

Side opposite(Side side) {
  return side == Side::Low ? Side::High : Side::Low;
}

class Refinement {
 public:
  Refinement(const Part& part, std::vector<Side>& sides)
      : part_(part), sides_(sides), isMoved_(sides.size()), gains_{Gains(sides.size()), Gains(sides.size())} {
    for (std::int32_t vertex = 0; vertex < part.size(); ++vertex) {
      weight(sides[vertex]) += part.unknowns[vertex];
      if (sides[vertex] == Side::Separator) separator_.push_back(vertex);
    }
    const auto all = static_cast<double>(weights_[0] + weights_[1] + weights_[2]);
    most_ = std::max({static_cast<std::int64_t>(all * windowEnd), weights_[0], weights_[1]});
  }

  void run() {
    for (int pass = 0; pass < passes && improve(); ++pass) continue;
  }

 private:
  using Gains = std::vector<std::int32_t>;
  using Entry = std::tuple<std::int32_t, std::int32_t>;  // gain and vertex

  struct Move {
    std::int32_t vertex;
    Side side;
    std::size_t pulled;  // vertices pulled into the separator before
  };

  std::int64_t& weight(Side side) { return weights_[static_cast<std::size_t>(side)]; }
  std::int32_t& gain(Side side, std::int32_t vertex) { return gains_[static_cast<std::size_t>(side)][vertex]; }

  [[nodiscard]] double cost() const {
    const auto all = static_cast<double>(weights_[0] + weights_[1] + weights_[2]);
    const auto apart = static_cast<double>(std::abs(weights_[0] - weights_[1]));
    return static_cast<double>(weights_[2]) * (1 + 0.5 * apart / all);
  }

  /// By how much the separator shrinks when a vertex of it moves to each side.
  void offer(std::int32_t vertex) {
    for (const Side side : bothSides) gain(side, vertex) = part_.unknowns[vertex];
    for (const std::int32_t other : part_.neighboursAt(vertex))
      if (sides_[other] != Side::Separator) gain(opposite(sides_[other]), vertex) -= part_.unknowns[other];
    if (isMoved_[vertex]) return;
    for (const Side side : bothSides) queue(side).emplace(gain(side, vertex), -vertex);
  }

  void change(Side side, std::int32_t vertex, std::int32_t difference) {
    gain(side, vertex) += difference;
    if (!isMoved_[vertex]) queue(side).emplace(gain(side, vertex), -vertex);
  }

  std::priority_queue<Entry>& queue(Side side) { return queues_[static_cast<std::size_t>(side)]; }

  /// Removes what no longer holds from the front of a queue. Whether something is left.
  bool hasMove(Side side) {
    auto& moves = queue(side);
    while (!moves.empty()) {
      const auto [expected, negative] = moves.top();
      const std::int32_t vertex = -negative;
      const bool holds = sides_[vertex] == Side::Separator && !isMoved_[vertex] && gain(side, vertex) == expected;
      if (holds && weight(side) + part_.unknowns[vertex] <= most_) return true;
      moves.pop();
    }
    return false;
  }

  void move(std::int32_t vertex, Side side) {
    moves_.push_back({vertex, side, pulled_.size()});
    isMoved_[vertex] = true;
    put(vertex, side);
    const Side other = opposite(side);
    for (const std::int32_t neighbour : part_.neighboursAt(vertex)) {
      if (sides_[neighbour] == Side::Separator) {
        change(other, neighbour, -part_.unknowns[vertex]);
      } else if (sides_[neighbour] == other) {
        pulled_.push_back(neighbour);
        put(neighbour, Side::Separator);
        for (const std::int32_t further : part_.neighboursAt(neighbour))
          if (sides_[further] == Side::Separator) change(side, further, part_.unknowns[neighbour]);
        offer(neighbour);
      }
    }
  }

  void put(std::int32_t vertex, Side side) {
    weight(sides_[vertex]) -= part_.unknowns[vertex];
    weight(side) += part_.unknowns[vertex];
    sides_[vertex] = side;
  }

  /// Moves vertices, and takes back what came after the best separator. Whether that is better than the first.
  bool improve() {
    for (auto& moves : queues_) moves = {};
    for (const std::int32_t vertex : separator_) offer(vertex);
    const double first = cost();
    double least = first;
    std::size_t best = 0;
    const std::size_t vain = patience + separator_.size() / patiencePart;
    while (moves_.size() < best + vain) {
      const bool low = hasMove(Side::Low);
      const bool high = hasMove(Side::High);
      if (!low && !high) break;
      Side side = low ? Side::Low : Side::High;
      if (low && high) {
        const auto gainLow = std::get<0>(queue(Side::Low).top());
        const auto gainHigh = std::get<0>(queue(Side::High).top());
        if (gainHigh > gainLow || (gainHigh == gainLow && weight(Side::High) < weight(Side::Low))) side = Side::High;
      }
      move(-std::get<1>(queue(side).top()), side);
      if (cost() < least) {
        least = cost();
        best = moves_.size();
      }
    }
    takeBack(best);
    return least < first;
  }

  void takeBack(std::size_t best) {
    std::vector<std::int32_t> touched = separator_;
    touched.insert(touched.end(), pulled_.begin(), pulled_.end());
    for (; moves_.size() > best; moves_.pop_back()) {
      const Move& last = moves_.back();
      for (; pulled_.size() > last.pulled; pulled_.pop_back()) put(pulled_.back(), opposite(last.side));
      put(last.vertex, Side::Separator);
    }
    separator_.clear();
    std::ranges::sort(touched);
    touched.erase(std::unique(touched.begin(), touched.end()), touched.end());
    for (const std::int32_t vertex : touched) {
      isMoved_[vertex] = false;
      if (sides_[vertex] == Side::Separator) separator_.push_back(vertex);
    }
    moves_.clear();
    pulled_.clear();
  }

  const Part& part_;
  std::vector<Side>& sides_;
  std::array<std::int64_t, 3> weights_{};  // of the sides and the separator
  std::int64_t most_;                      // weight of a side
  std::vector<std::int32_t> separator_;
  std::vector<char> isMoved_;  // in this pass
  std::array<Gains, 2> gains_;
  std::array<std::priority_queue<Entry>, 2> queues_;
  std::vector<Move> moves_;
  std::vector<std::int32_t> pulled_;
};

}  // namespace

void refineSeparator(const Part& part, std::vector<Side>& sides) {
  Refinement(part, sides).run();
}

}  // namespace gavrel
