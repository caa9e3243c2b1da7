#include "Workbench/DesktopAppearance.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>

#include "Tests/Workbench/FakePortal.h"

using namespace gavrel;

namespace {

constexpr unsigned dark = 1;
constexpr unsigned light = 2;

void waitFor(bool wanted, const DesktopAppearance& appearance) {
  QElapsedTimer timer;
  timer.start();
  while (appearance.dark() != wanted && !timer.hasExpired(5000)) QCoreApplication::processEvents();
  EXPECT_EQ(appearance.dark(), wanted);
}

TEST(DesktopAppearance, FollowsThePortal) {
  FakePortal portal(dark);
  DesktopAppearance appearance;
  EXPECT_FALSE(appearance.dark()) << "the palette of the tests' platform is light";
  waitFor(true, appearance);
  portal.change(light);
  waitFor(false, appearance);
  portal.change(dark);
  waitFor(true, appearance);
  portal.change(light, "contrast");  // another setting, then no preference: the palette decides
  portal.change(0);
  waitFor(false, appearance);
}

}  // namespace
