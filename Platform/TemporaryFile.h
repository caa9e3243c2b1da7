#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>

#include "Platform/FileDescriptor.h"
#include "Platform/Signals.h"

namespace gavrel {

/// A new, empty file in a folder, open for writing. It is deleted with this object unless it has been moved to its
/// place.
///
/// Without a name it disappears with the process, however that ends; not all file systems have such files. With a name,
/// which begins with ".gavrel-" and the number of the process, it stays behind when the process is killed.
class TemporaryFile {
 public:
  enum class Kind { unnamed, named };

  /// Leaves `file` closed, with errno set, where there can be no such file.
  TemporaryFile(const std::filesystem::path& folder, mode_t permissions, Kind kind);
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile();

  /// Makes it the file `target` of its folder in one step; 0, or the errno value of what failed. A file that is there
  /// is replaced; `replaces` tells whether to expect one.
  [[nodiscard]] int moveTo(const std::filesystem::path& target, bool replaces);

  /// Whether it has ever had a name.
  [[nodiscard]] bool hasName() const { return !name_.empty(); }

  FileDescriptor file{-1};

 private:
  /// Tries `make` with names until one is free; whether it succeeded.
  template <class Make>
  bool takeName(Make&& make);

  const std::filesystem::path folder_;
  std::filesystem::path name_;
  std::optional<RemovedOnSignal> removal_;
};

/// Removes the named temporary files that killed processes have left in a folder that only this user can write to.
/// Those of the last minutes stay: a process of another machine may be writing them.
void sweepTemporaryFiles(const std::filesystem::path& folder);

}  // namespace gavrel
