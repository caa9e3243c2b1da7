#include "Platform/Fatal.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <vector>

#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

TEST(Fatal, IndexOutsideTheArrayAndOverflowEndTheProcess) {
  std::vector<int> U_I{10, 20, 30};
  at(U_I, 2, "U_I") = 31;
  EXPECT_EQ(at(U_I, 2, "U_I"), 31);
  for (const std::int64_t index : {-1L, 3L, INT64_MIN}) {
    EXPECT_DEATH(static_cast<void>(at(U_I, index, "U_I")),
                 "^Fatal error: index " + std::to_string(index) + " is outside U_I, which has 3 entries\n$");
  }
  constexpr std::int64_t largest = INT64_MAX;
  EXPECT_EQ(checkedProduct(6, -largest / 6, 1, "too large"), -largest / 6 * 6 + 1);
  EXPECT_DEATH(static_cast<void>(checkedProduct(6, largest / 6 + 1, 0, "too large")), "^Fatal error: too large\n$");
  EXPECT_DEATH(static_cast<void>(checkedProduct(6, -(largest / 6) - 1, 0, "too large")), "too large");
  EXPECT_DEATH(static_cast<void>(checkedProduct(1, largest, 1, "too large")), "too large");
}

TEST(Fatal, WritesPendingOutputBeforeItEndsTheProcess) {
  const TemporaryFolder folder;
  const auto printAndFail = [&] {
    if (std::freopen((folder / "printed").c_str(), "w", stdout) == nullptr) return;
    std::fputs("printed before", stdout);
    fatal("the end");
  };
  EXPECT_DEATH(printAndFail(), "the end");
  EXPECT_EQ(folder.get("printed"), "printed before");
}

TEST(Fatal, HandsItsLineToWhoWantsToKeepIt) {
  const TemporaryFolder folder;
  onFatal([&](std::string_view line) {
    folder.put("kept", line);
    fatal("in the keeper, too");
  });
  EXPECT_DEATH(fatal("the end"), "^Fatal error: the end\nFatal error: in the keeper, too\n$");
  EXPECT_EQ(folder.get("kept"), "Fatal error: the end");
  onFatal({});
}

}  // namespace
