#include "Platform/Observable.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(Observable, AnnouncesOncePerEditBeforeTheChange) {
  Observable owner;
  Published<std::vector<int>> numbers(owner, {1});
  std::vector<std::vector<int>> seen;
  owner.observe([&] { seen.push_back(*numbers); });

  auto& edited = numbers.edit();
  edited.push_back(2);
  edited.push_back(3);
  EXPECT_EQ(seen, (std::vector<std::vector<int>>{{1}}));
  EXPECT_EQ(numbers->size(), 3u);
  EXPECT_EQ(seen.size(), 1u) << "reading announces nothing";
  numbers.edit().clear();
  EXPECT_EQ(seen.back(), (std::vector<int>{1, 2, 3}));
}

TEST(Observable, CallsObserversInOrderUntilTheyAreForgotten) {
  Observable owner;
  std::string calls;
  const auto log = [&](char name) { return owner.observe([&calls, name] { calls += name; }); };
  const auto a = log('a');
  const auto b = log('b');
  log('c');
  owner.announce();
  owner.forget(b);
  owner.announce();
  log('d');  // must not take the place of b
  owner.forget(b);
  owner.forget(a);
  owner.announce();
  EXPECT_EQ(calls, "abcaccd");
}

}  // namespace
