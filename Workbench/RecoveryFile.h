#pragma once

#include <QDateTime>
#include <QString>
#include <filesystem>
#include <memory>
#include <optional>

#include "DataModel/Project.h"
#include "Platform/FileStamp.h"
#include "Platform/Result.h"

namespace gavrel {

/// A structure that has not been saved, as kept in case the process ends unexpectedly.
struct RecoveredProject {
  std::shared_ptr<Project> project;
  std::optional<std::filesystem::path> file;  ///< where it was opened or last saved
  std::optional<FileStamp> stamp;             ///< of that file at that time
  QDateTime time;                             ///< of its last change
};

/// Replaces the recovery file in one step; see replaceFile. Numbers are kept bit by bit, those that are not finite,
/// too. Returns the reason when nothing was replaced.
///
/// The file is a sequence of sections, each a line with a key and a number of bytes, and these bytes: the file, the
/// time, the project's arrays and, one section for each field, its elements, all as they stand in memory. The last one
/// is a checksum of what stands before. Unknown sections are passed over.
[[nodiscard]] std::optional<Failure> writeRecovery(const std::filesystem::path& path,
                                                   const RecoveredProject& recovered);

/// Reads such a file. Fails, with the reason, on any file but one that writeRecovery wrote, whole and unchanged.
[[nodiscard]] Result<RecoveredProject> readRecovery(const std::filesystem::path& path);

}  // namespace gavrel
