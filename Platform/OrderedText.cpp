#include "Platform/OrderedText.h"

#include <oneapi/tbb/parallel_pipeline.h>
#include <oneapi/tbb/task_arena.h>

#include <algorithm>
#include <vector>

namespace gavrel {

namespace {

struct Range {
  std::size_t first = 0;
  std::size_t last = 0;
  std::string text;
};

}  // namespace

void makeInOrder(std::size_t count, std::size_t perPiece,
                 const std::function<void(std::size_t first, std::size_t last, std::string& text)>& make,
                 const std::function<void(std::string_view text)>& take) {
  namespace tbb = oneapi::tbb;
  // As many ranges as the pipeline has under way at most, so that the one to be used next has been taken.
  std::vector<Range> room(static_cast<std::size_t>(2 * tbb::this_task_arena::max_concurrency()));
  std::size_t begun = 0;
  const auto begin = [&](tbb::flow_control& flow) -> Range* {
    const std::size_t first = begun * perPiece;
    if (first >= count) {
      flow.stop();
      return nullptr;
    }
    Range& range = room[begun++ % room.size()];
    range.first = first;
    range.last = std::min(first + perPiece, count);
    range.text.clear();
    return &range;
  };
  const auto fill = [&make](Range* range) {
    make(range->first, range->last, range->text);
    return range;
  };
  const auto end = [&take](const Range* range) { take(range->text); };
  tbb::parallel_pipeline(room.size(), tbb::make_filter<void, Range*>(tbb::filter_mode::serial_in_order, begin) &
                                          tbb::make_filter<Range*, Range*>(tbb::filter_mode::parallel, fill) &
                                          tbb::make_filter<Range*, void>(tbb::filter_mode::serial_in_order, end));
}

}  // namespace gavrel
