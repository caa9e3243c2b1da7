#pragma once

#include <QDateTime>
#include <QString>
#include <filesystem>
#include <memory>
#include <optional>

#include "DataModel/Project.h"
#include "Platform/FileStamp.h"
#include "Platform/Result.h"

/// A structure that has not been saved, as it is kept for the case that the process ends unforeseen.
struct RecoveredProject {
  std::shared_ptr<Project> project;
  std::optional<std::filesystem::path> file;  ///< where it was opened or last saved
  std::optional<FileStamp> stamp;             ///< of that file when it was
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

/// The same read back. Fails, with the reason, on any file but one that writeRecovery wrote, whole and unchanged.
[[nodiscard]] Result<RecoveredProject> readRecovery(const std::filesystem::path& path);
