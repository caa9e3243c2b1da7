#include "Factorization/TreeTasks.h"

#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include <algorithm>
#include <functional>
#include <mutex>
#include <queue>

namespace gavrel {

namespace {

using Numbers = std::vector<std::int32_t>;
constexpr std::int32_t none = -1;

/// A subtree holds at most this part of all work, or so many operations.
constexpr double subtreePart = 1.0 / 64;
constexpr double subtreeOperations = 2e6;

/// Below this many operations threads cost more than they save.
constexpr double threadedOperations = 1e7;

}  // namespace

TreeTasks::TreeTasks(const Fronts& plan) : crosses_(plan.fronts.size()), operations_(plan.operations) {
  const double most = std::max(plan.operations * subtreePart, subtreeOperations);
  std::vector<double> work(plan.fronts.size());
  std::vector<std::int32_t> first(plan.fronts.size());  // of each subtree
  for (std::int32_t f = 0; f < plan.size(); ++f) {
    work[f] += plan.fronts[f].operations();
    const auto children = plan.childrenOf(f);
    first[f] = children.empty() ? f : first[children.front()];
    if (plan.fronts[f].parent != none) work[plan.fronts[f].parent] += work[f];
  }
  const auto isTop = [&](std::int32_t f) { return work[f] > most; };
  std::vector<std::int32_t> taskOf(plan.fronts.size(), none);
  double workOfLast = 0;
  for (std::int32_t f = 0; f < plan.size(); ++f) {
    const std::int32_t parent = plan.fronts[f].parent;
    if (!isTop(f) && parent != none && !isTop(parent)) continue;
    crosses_[f] = parent != none;
    const bool joins = !isTop(f) && !tasks_.empty() && tasks_.back().isSubtree &&
                       first[f] == tasks_.back().lastFront + 1 &&
                       plan.fronts[tasks_.back().lastFront].parent == parent && workOfLast + work[f] <= most;
    if (joins) {
      tasks_.back().lastFront = f;
      workOfLast += work[f];
    } else {
      tasks_.push_back({isTop(f) ? f : first[f], f, none, 0, !isTop(f)});
      workOfLast = work[f];
    }
    taskOf[f] = static_cast<std::int32_t>(tasks_.size()) - 1;
  }
  children_.resize(tasks_.size());
  for (std::size_t t = 0; t < tasks_.size(); ++t) {
    Task& task = tasks_[t];
    const std::int32_t parent = plan.fronts[task.lastFront].parent;
    if (parent == none) continue;
    task.parent = taskOf[parent];
    ++tasks_[task.parent].children;
    children_[task.parent].push_back(static_cast<std::int32_t>(t));
  }
}

bool TreeTasks::isWorthThreads() const {
  return tasks_.size() > 1 && operations_ >= threadedOperations;
}

void TreeTasks::visitUpwards(int threads, const Visit& visit) const {
  if (threads <= 1 || !isWorthThreads()) {
    for (const Task& task : tasks_) visit(task);
    return;
  }
  // Of what is ready, the first in the order of one thread: so the fewest updates wait for their parents at a time.
  std::priority_queue<std::int32_t, Numbers, std::greater<>> ready;
  std::mutex mutex;
  Numbers waiting;
  for (const Task& task : tasks_) waiting.push_back(task.children);
  tbb::task_arena arena(threads);
  arena.execute([&] {
    tbb::task_group group;
    const std::function<void()> visitNext = [&] {
      std::unique_lock lock(mutex);
      const std::int32_t t = ready.top();
      ready.pop();
      lock.unlock();
      visit(tasks_[t]);
      const std::int32_t parent = tasks_[t].parent;
      if (parent == none) return;
      lock.lock();
      if (--waiting[parent] > 0) return;
      ready.push(parent);
      lock.unlock();
      group.run(visitNext);
    };
    for (std::int32_t t = 0; t < std::ssize(tasks_); ++t)
      if (tasks_[t].children == 0) ready.push(t);
    for (auto leaves = ready.size(); leaves > 0; --leaves) group.run(visitNext);
    group.wait();
  });
}

void TreeTasks::visitDownwards(int threads, const Visit& visit) const {
  if (threads <= 1 || !isWorthThreads()) {
    for (std::size_t t = tasks_.size(); t-- > 0;) visit(tasks_[t]);
    return;
  }
  tbb::task_arena arena(threads);
  arena.execute([&] {
    tbb::task_group group;
    const std::function<void(std::int32_t)> run = [&](std::int32_t t) {
      group.run([&, t] {
        visit(tasks_[t]);
        for (const std::int32_t child : children_[t]) run(child);
      });
    };
    for (std::int32_t t = 0; t < std::ssize(tasks_); ++t)
      if (tasks_[t].parent == none) run(t);
    group.wait();
  });
}

}  // namespace gavrel
