#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "Factorization/Fronts.h"

namespace gavrel {

/// The fronts of a factorization as tasks that wait only for their children: subtrees of about equal work that one
/// thread does in order, and the large fronts above them, one by one.
class TreeTasks {
 public:
  struct Task {
    std::int32_t firstFront;
    std::int32_t lastFront;
    std::int32_t parent;    ///< the task that waits for this one; -1: none
    std::int32_t children;  ///< tasks that this one waits for
    bool isSubtree;         ///< else a front above subtrees
  };
  using Visit = std::function<void(const Task&)>;

  explicit TreeTasks(const Fronts& plan);

  /// Visits children before parents, in parallel. What a visit throws is thrown on when all have ended.
  void visitUpwards(int threads, const Visit& visit) const;

  /// Visits parents before children.
  void visitDownwards(int threads, const Visit& visit) const;

  /// The front's update is taken over by another task.
  [[nodiscard]] bool crossesTasks(std::int32_t front) const { return crosses_[front]; }

  /// Several threads save time.
  [[nodiscard]] bool isWorthThreads() const;

 private:
  std::vector<Task> tasks_;
  std::vector<std::vector<std::int32_t>> children_;
  std::vector<bool> crosses_;
  double operations_;
};

}  // namespace gavrel
