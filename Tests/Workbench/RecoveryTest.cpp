#include "Workbench/Recovery.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QProcess>
#include <cmath>
#include <functional>
#include <memory>
#include <random>
#include <thread>

#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

/// A view model with its recovery, as a process has them.
struct RunningCopy {
  explicit RunningCopy(const fs::path& folder) : recovery(viewModel, folder) {}

  void addNodes(int count) {
    for (int i = 0; i < count; ++i) viewModel.addNode({double(i), 1, 2}, true);
  }

  ProjectViewModel viewModel;
  Recovery recovery;
};

std::vector<fs::path> recoveryFiles(const fs::path& folder) {
  std::vector<fs::path> files;
  if (!fs::exists(folder)) return files;
  for (const auto& entry : fs::directory_iterator(folder))
    if (entry.path().extension() == ".recovery") files.push_back(entry.path());
  return files;
}

class RecoveryTest : public testing::Test {
 protected:
  TemporaryFolder files;
  const fs::path folder = files / "recovery";
};

TEST_F(RecoveryTest, ChangesAreKeptWithinASecondUntilTheyAreSaved) {
  RunningCopy copy(folder);
  EXPECT_FALSE(fs::exists(folder));
  /// Whether the disk holds what is in memory within a second.
  const auto isKept = [&] {
    const auto holds = [&] {
      const auto kept = recoveryFiles(folder);
      if (kept.size() != 1) return false;
      const auto content = readRecovery(kept.front());
      const Project& now = **copy.viewModel.project;
      return content && *content->project->X_I == *now.X_I && *content->project->trussElements == *now.trussElements &&
             *content->project->F_I == *now.F_I;
    };
    const QDeadlineTimer second(1000);
    while (!second.hasExpired() && !holds()) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    return holds();
  };
  copy.addNodes(3);
  EXPECT_TRUE(isKept());
  copy.viewModel.setNonLinear(0, false);
  EXPECT_TRUE(isKept());
  copy.viewModel.setLoadAndRestraint(0, 1, 2, 3, false, false, false);
  EXPECT_TRUE(isKept());

  // A failed save keeps the recovery file.
  EXPECT_FALSE(copy.viewModel.saveProject(files / "missing/saved.json"));
  EXPECT_TRUE(isKept());

  // Another process does not touch it.
  RunningCopy other(folder);
  other.recovery.lookForOffer();
  EXPECT_FALSE(other.recovery.hasOffer());

  EXPECT_TRUE(copy.viewModel.saveProject(files / "saved.json"));
  EXPECT_FALSE(copy.viewModel.hasUnsavedChanges());
  EXPECT_TRUE(recoveryFiles(folder).empty());
  copy.addNodes(1);
  EXPECT_TRUE(isKept());
  copy.viewModel.newProject();
  EXPECT_TRUE(recoveryFiles(folder).empty());
}

TEST_F(RecoveryTest, WhatAProcessHasLeftIsOfferedOnce) {
  {
    RunningCopy gone(folder);
    gone.viewModel.restore(std::make_shared<Project>("Brücke"), {"/somewhere/bridge.json", FileStamp{1, 2, 3, 4}});
    gone.addNodes(4);
    gone.viewModel.setLoadAndRestraint(2, 1, 2, 3, false, true, false);
    gone.recovery.flush();
    gone.recovery.keepReason("Fatal error: it could not be solved");
  }
  std::optional<RunningCopy> next(std::in_place, folder);
  next->recovery.lookForOffer();
  ASSERT_TRUE(next->recovery.hasOffer());
  EXPECT_EQ(next->recovery.offeredName(), "Brücke");
  EXPECT_EQ(next->recovery.offeredFile(), "bridge.json");
  EXPECT_EQ(next->recovery.offeredReason(), "Fatal error: it could not be solved");
  EXPECT_EQ(next->recovery.offeredDanger(), "");
  EXPECT_EQ(next->recovery.offeredNodes(), 4);
  EXPECT_EQ(next->recovery.offeredElements(), 3);
  next->recovery.postponeOffer();
  EXPECT_FALSE(next->recovery.hasOffer());

  next.emplace(folder);
  next->recovery.lookForOffer();
  RunningCopy meanwhile(folder);
  meanwhile.recovery.lookForOffer();
  EXPECT_FALSE(meanwhile.recovery.hasOffer());
  next->recovery.restoreOffer();
  EXPECT_EQ(*next->viewModel.numberOfNodes, 4);
  EXPECT_EQ((*(*next->viewModel.project)->F_I)[14], 3);
  EXPECT_EQ(next->viewModel.origin().file, "/somewhere/bridge.json");
  EXPECT_EQ(next->viewModel.origin().stamp, (FileStamp{1, 2, 3, 4}));
  EXPECT_TRUE(next->viewModel.hasUnsavedChanges());
  EXPECT_EQ(recoveryFiles(folder).size(), 1);  // a new file keeps it, and the old one is removed

  // It is offered again if the process ends again, but not after it was discarded.
  next.emplace(folder);
  next->recovery.lookForOffer();
  ASSERT_TRUE(next->recovery.hasOffer());
  EXPECT_EQ(next->recovery.offeredReason(), "");
  next->recovery.discardOffer();
  EXPECT_FALSE(next->recovery.hasOffer());
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 0);

  next->recovery.keepReason("nothing is kept");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 0);
}

TEST_F(RecoveryTest, DamagedFilesAreLeftAlone) {
  fs::create_directory(folder);
  files.put("recovery/a.recovery", "{\"sha256\":\"\"}\n{}");
  const auto killed = files.put("recovery/.gavrel-99999999-0", "half a f");
  fs::last_write_time(killed, fs::file_time_type::clock::now() - std::chrono::hours(1));
  RunningCopy copy(folder);
  testing::internal::CaptureStderr();
  copy.recovery.lookForOffer();
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("a.recovery is left alone"));
  EXPECT_FALSE(copy.recovery.hasOffer());
  EXPECT_EQ(recoveryFiles(folder).size(), 1);
  EXPECT_FALSE(fs::exists(killed)) << "what a killed process has left of its writing";
}

/// Does it while no file can get more than 100 bytes.
void onFullDisk(const std::function<void()>& action) {
  ::signal(SIGXFSZ, SIG_IGN);
  rlimit former{};
  ::getrlimit(RLIMIT_FSIZE, &former);
  const rlimit full{100, former.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &full);
  action();
  ::setrlimit(RLIMIT_FSIZE, &former);
}

TEST_F(RecoveryTest, WhatCannotBeKeptIsToldAndTheLastFileStays) {
  // A file where the folder should be.
  files.put("recovery", "");
  RunningCopy copy(folder);
  copy.addNodes(1);
  copy.recovery.flush();
  EXPECT_NE(copy.recovery.failure(), "");
  fs::remove(folder);
  copy.recovery.flush();  // tries again, though nothing has changed
  EXPECT_EQ(copy.recovery.failure(), "");

  copy.addNodes(1);
  onFullDisk([&] { copy.recovery.flush(); });
  EXPECT_NE(copy.recovery.failure(), "");

  const auto left = recoveryFiles(folder);
  ASSERT_EQ(left.size(), 1);
  const auto kept = readRecovery(left.front());
  ASSERT_TRUE(kept);
  EXPECT_EQ(kept->project->nodeCount(), 1);

  // A number that no project file can hold is kept here.
  copy.viewModel.addNode({std::nan(""), 0, 0}, false);
  EXPECT_FALSE(copy.viewModel.saveProject(files / "saved.json"));
  copy.recovery.flush();
  EXPECT_EQ(copy.recovery.failure(), "");
  EXPECT_TRUE(std::isnan(readRecovery(left.front())->project->getNodeCoordinates(2)->x));

  // What is offered goes only once it is kept anew.
  const fs::path other = files / "other";
  std::optional<RunningCopy> gone(std::in_place, other);
  gone->addNodes(2);
  gone->recovery.flush();
  gone.reset();
  RunningCopy next(other);
  next.recovery.lookForOffer();
  onFullDisk([&] { next.recovery.restoreOffer(); });
  EXPECT_EQ(*next.viewModel.numberOfNodes, 2);
  EXPECT_EQ(recoveryFiles(other).size(), 1);
}

TEST_F(RecoveryTest, KilledAtAnyMomentAProcessLosesASecondAtMost) {
  constexpr int rounds = KILLS / 8;
  constexpr std::size_t atOnce = 8;
  std::mt19937 random(20261123);
  int kept = 0;  // processes that had something older than a second
  for (int round = 0; round < rounds; ++round) {
    std::vector<std::unique_ptr<QProcess>> editors;
    std::vector<fs::path> folders;
    for (std::size_t i = 0; i < atOnce; ++i) {
      folders.push_back(files / std::to_string(round * 10 + static_cast<int>(i)));
      editors.push_back(std::make_unique<QProcess>());
      editors.back()->start(RECOVERY_EDITOR, {QString::fromStdString(folders.back().string())});
    }
    for (std::size_t i = 0; i < atOnce; ++i) {
      std::this_thread::sleep_for(std::uniform_int_distribution(5, 400)(random) * 1ms);
      editors[i]->kill();
      const auto killed = std::chrono::steady_clock::now().time_since_epoch() / 1ms;
      ASSERT_TRUE(editors[i]->waitForFinished());

      long long due = 0;
      for (const QByteArray& line : editors[i]->readAllStandardOutput().split('\n')) {
        const auto fields = line.split(' ');
        if (fields.size() == 2 && fields[1].toLongLong() < killed - 1000) due = fields[0].toLongLong();
      }
      RunningCopy next(folders[i]);
      testing::internal::CaptureStderr();
      next.recovery.lookForOffer();
      EXPECT_EQ(testing::internal::GetCapturedStderr(), "");  // no file is damaged
      EXPECT_GE(next.recovery.offeredNodes(), due);
      kept += due > 0;
    }
  }
  EXPECT_GT(kept, KILLS / 10);
}

}  // namespace
