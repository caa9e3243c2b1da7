#pragma once

#include <QDateTime>
#include <QString>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "DataModel/Project.h"
#include "Platform/Result.h"

/// A structure that has not been saved, as it is kept for the case that the process ends unforeseen.
struct RecoveredProject {
  std::shared_ptr<Project> project;
  std::optional<std::filesystem::path> file;  ///< where it was opened or last saved
  QDateTime time;                             ///< of its last change
};

/// The text of a recovery file: a line that tells of the rest and carries its checksum, then the project. Fails if the
/// project cannot be encoded.
[[nodiscard]] Result<std::string> encodeRecovery(const RecoveredProject& recovered);

/// The same read back. Fails, with the reason, on any text but one that encodeRecovery wrote, whole and unchanged.
[[nodiscard]] Result<RecoveredProject> decodeRecovery(const std::string& text);
