#pragma once

#include <QDateTime>
#include <QString>
#include <filesystem>
#include <memory>
#include <optional>

#include "DataModel/Project.h"
#include "Platform/Result.h"

/// A structure that has not been saved, as it is kept for the case that the process ends unforeseen.
struct RecoveredProject {
  std::shared_ptr<Project> project;
  std::optional<std::filesystem::path> file;  ///< where it was opened or last saved
  QDateTime time;                             ///< of its last change
};

/// Replaces the recovery file in one step: a line that tells of file and time, the project, and a checksum of both.
/// Returns the reason when nothing was replaced.
[[nodiscard]] std::optional<Failure> writeRecovery(const std::filesystem::path& path,
                                                   const RecoveredProject& recovered);

/// The same read back. Fails, with the reason, on any file but one that writeRecovery wrote, whole and unchanged.
[[nodiscard]] Result<RecoveredProject> readRecovery(const std::filesystem::path& path);
