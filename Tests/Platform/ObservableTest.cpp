#include "Platform/Observable.h"

#include <gtest/gtest.h>

#include <string>

using namespace gavrel;

namespace {

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
