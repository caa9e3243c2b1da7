#include "Viewport/FrameTimer.h"

#include <gtest/gtest.h>

#include <QQuickWindow>
#include <QThread>
#include <chrono>

using namespace gavrel;

namespace {

TEST(FrameTimer, LeavesOutTheTimeBetweenFrames) {
  QQuickWindow window;
  FrameTimer timer;
  emit window.beforeSynchronizing();
  timer.setWindow(&window);
  emit window.frameSwapped();
  EXPECT_EQ(timer.milliseconds(), 0) << "it did not see the beginning";
  const auto frame = [&window](unsigned long milliseconds) {
    emit window.beforeSynchronizing();
    QThread::msleep(milliseconds);
    emit window.frameSwapped();
  };
  frame(20);
  const double first = timer.milliseconds();
  EXPECT_GE(first, 20);
  QThread::msleep(400);
  frame(40);
  EXPECT_EQ(timer.milliseconds(), first) << "this frame may be there to show the figure";
  const auto start = std::chrono::steady_clock::now();
  frame(60);
  const std::chrono::duration<double, std::milli> most = std::chrono::steady_clock::now() - start;
  EXPECT_GE(timer.milliseconds(), 60);
  EXPECT_LE(timer.milliseconds(), most.count() + 0.1);
  const double second = timer.milliseconds();
  const auto renewed = std::chrono::steady_clock::now();
  frame(1);
  frame(1);
  if (std::chrono::steady_clock::now() - renewed < std::chrono::milliseconds(150)) {
    EXPECT_EQ(timer.milliseconds(), second) << "too soon to be read";
  }
  timer.setWindow(nullptr);
  QThread::msleep(250);
  frame(1);
  frame(1);
  EXPECT_EQ(timer.milliseconds(), second);
}

}  // namespace
