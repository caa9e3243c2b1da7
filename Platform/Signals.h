#pragma once

#include <signal.h>

#include <filesystem>

namespace gavrel {

/// What the signals that end a program leave of its files.

/// Has each of the signals HUP, INT, QUIT, ABRT, TERM and XCPU wait for an Uninterrupted and remove the file of each
/// RemovedOnSignal before it ends the process as ever. Those that are ignored stay so. A write beyond the largest size
/// that the process may give a file fails with EFBIG, in place of ending it. For the begin of `main`.
void keepFilesWholeOnSignals();

/// While it lives, none of these signals ends the process, whichever thread it reaches. For steps between which a file
/// would be left that nobody wants. Not to be nested.
class Uninterrupted {
 public:
  Uninterrupted();
  Uninterrupted(const Uninterrupted&) = delete;
  Uninterrupted& operator=(const Uninterrupted&) = delete;
  ~Uninterrupted();

 private:
  sigset_t blockedBefore_{};
};

/// A file that goes when such a signal ends the process; to be made before the file is. There is room for a few at a
/// time: the files of more stay.
class RemovedOnSignal {
 public:
  explicit RemovedOnSignal(const std::filesystem::path& file);
  RemovedOnSignal(const RemovedOnSignal&) = delete;
  RemovedOnSignal& operator=(const RemovedOnSignal&) = delete;
  ~RemovedOnSignal();

 private:
  int place_ = -1;  // in the table; -1: there was none
};

}  // namespace gavrel
