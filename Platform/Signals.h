#pragma once

#include <signal.h>

#include <filesystem>

namespace gavrel {

/// Keeps files whole and removes temporary ones when a signal ends the program.

/// Has each of the signals HUP, INT, QUIT, ABRT, TERM and XCPU wait for an Uninterrupted and remove the file of each
/// RemovedOnSignal before it ends the process as usual. Ignored signals stay ignored. A write beyond the largest size
/// that the process may give a file fails with EFBIG instead of ending the process. To be called first in `main`.
void keepFilesWholeOnSignals();

/// While it exists, none of these signals ends the process, whichever thread it reaches. For steps that would leave an
/// unwanted file if the process ended between them. Not to be nested.
class Uninterrupted {
 public:
  Uninterrupted();
  Uninterrupted(const Uninterrupted&) = delete;
  Uninterrupted& operator=(const Uninterrupted&) = delete;
  ~Uninterrupted();

 private:
  sigset_t blockedBefore_{};
};

/// A file that is removed when such a signal ends the process; to be constructed before the file is created. Only a few
/// can exist at a time; files beyond that number are not removed.
class RemovedOnSignal {
 public:
  explicit RemovedOnSignal(const std::filesystem::path& file);
  RemovedOnSignal(const RemovedOnSignal&) = delete;
  RemovedOnSignal& operator=(const RemovedOnSignal&) = delete;
  ~RemovedOnSignal();

 private:
  int place_ = -1;  // in the table; -1: none was free
};

}  // namespace gavrel
