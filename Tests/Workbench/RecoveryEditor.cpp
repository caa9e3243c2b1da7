#include <QCoreApplication>
#include <QTimer>
#include <chrono>
#include <cinttypes>
#include <cstdio>

#include "Workbench/Recovery.h"

using namespace gavrel;

/// Edits a structure without end, with its recovery in the folder given; an empty one, or that in the file given next.
/// Tells of each edit, once made, by a line: the number of nodes and the time of the steady clock in milliseconds. What
/// the view model itself prints is dropped.
int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  std::FILE* const report = ::fdopen(::dup(STDOUT_FILENO), "w");
  if (std::freopen("/dev/null", "w", stdout) == nullptr) return 1;
  ProjectViewModel viewModel;
  Recovery recovery(viewModel, argv[1]);
  if (argc > 2 && !viewModel.loadProject(std::filesystem::path(argv[2]))) return 1;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&] {
    const auto nodes = *viewModel.numberOfNodes;
    viewModel.addNode({static_cast<double>(nodes), 0, 0}, true);
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    const std::int64_t milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
    std::fprintf(report, "%" PRId64 " %" PRId64 "\n", nodes + 1, milliseconds);
    std::fflush(report);
  });
  timer.start(5);
  return QCoreApplication::exec();
}
