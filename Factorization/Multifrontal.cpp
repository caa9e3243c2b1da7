#include "Factorization/Multifrontal.h"

#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include <algorithm>
#include <numeric>

namespace gavrel {

Multifrontal::Multifrontal(const Fronts& plan)
    : plan_(plan),
      tasks_(plan),
      depth_(plan.fronts.size()),
      rowStarts_(plan.fronts.size() + 1),
      updates_(plan.fronts.size()),
      leastParts_(plan.fronts.size()),
      badPivots_(plan.fronts.size()) {
  for (std::int32_t f = plan.size() - 1; f >= 0; --f)
    if (plan.fronts[f].parent >= 0) depth_[f] = depth_[plan.fronts[f].parent] ^ 1;
  for (std::int32_t f = 0; f < plan.size(); ++f) rowStarts_[f + 1] = rowStarts_[f] + plan.fronts[f].rows;

  std::array<std::int64_t, 2> held{};
  for (std::int32_t f = 0; f < plan.size(); ++f) {
    if (!tasks_.crossesTasks(f)) {
      held[depth_[f]] += plan.fronts[f].update().size();
      stackSizes_[depth_[f]] = std::max(stackSizes_[depth_[f]], held[depth_[f]]);
    }
    for (const std::int32_t child : plan.childrenOf(f))
      if (!tasks_.crossesTasks(child)) held[depth_[child]] -= plan.fronts[child].update().size();
  }
}

void Multifrontal::reserve() {
  if (factor_.size() == 0) factor_ = NumberArray(plan_.panelStarts.back());
}

bool Multifrontal::hasRoomForThreads(int threads) const {
  constexpr std::int64_t threadSize = (std::int64_t{32} << 20) / std::int64_t{sizeof(double)};  // a stack and malloc's
  std::int64_t size = threads * (threadSize + stackSizes_[0] + stackSizes_[1]);
  for (std::int32_t f = 0; f < plan_.size(); ++f)
    if (tasks_.crossesTasks(f)) size += plan_.fronts[f].update().size();
  return hasRoomFor(size);
}

std::optional<BadPivot> Multifrontal::factorize(std::span<const double> values, int threads,
                                                const std::atomic<bool>& stop) {
  values_ = values;
  stop_ = &stop;
  threads_ = usefulThreads(threads);
  firstBad_ = plan_.size();
  reserve();
  pool_.giveAllBack();
  tasks_.visitUpwards(threads_, [this](const TreeTasks::Task& task) { visit(task); });
  if (firstBad_ < plan_.size()) return badPivots_[firstBad_];
  least_ = {};
  for (const LeastPart& least : leastParts_)
    if (least.part < least_.part) least_ = least;
  return std::nullopt;
}

void Multifrontal::visit(const TreeTasks::Task& task) {
  Stacks& stacks = stacks_.local();
  if (task.isSubtree)
    for (std::size_t i = 0; i < stacks.size(); ++i) stacks[i].reset(stackSizes_[i]);
  for (std::int32_t f = task.firstFront; f <= task.lastFront; ++f) {
    if (f > firstBad_ || *stop_) return;
    const std::int64_t size = plan_.fronts[f].update().size();
    double* update = nullptr;
    if (size > 0) update = tasks_.crossesTasks(f) ? pool_.take(size) : stacks[depth_[f]].push(size);
    updates_[f] = update;
    eliminate(f, update, !task.isSubtree);
    for (const std::int32_t child : plan_.childrenOf(f)) {
      if (tasks_.crossesTasks(child))
        pool_.giveBack(updates_[child]);
      else
        stacks[depth_[child]].pop(plan_.fronts[child].update().size());
    }
  }
}

void Multifrontal::eliminate(std::int32_t f, double* update, bool isShared) {
  std::vector<Elimination::Child> children;
  for (const std::int32_t child : plan_.childrenOf(f))
    children.push_back({plan_.fronts[child].update(), plan_.runsOf(child), updates_[child]});
  Elimination elimination(plan_, f, values_, panel(f), update, std::move(children));
  const std::int32_t helpers = isShared ? std::min(threads_, elimination.tiles()) - 1 : 0;
  if (helpers > 0) {
    // Who waits for the helpers begins nothing else meanwhile.
    tbb::this_task_arena::isolate([&] {
      tbb::task_group group;
      for (std::int32_t i = 0; i < helpers; ++i) group.run([&] { elimination.work(*stop_); });
      elimination.work(*stop_);
      group.wait();
    });
  } else {
    elimination.work(*stop_);
  }
  if (*stop_) return;
  badPivots_[f] = elimination.badPivot();
  if (!badPivots_[f]) {
    leastParts_[f] = elimination.leastPart();
    return;
  }
  for (std::int32_t first = firstBad_; f < first && !firstBad_.compare_exchange_weak(first, f);) continue;
}

}  // namespace gavrel
