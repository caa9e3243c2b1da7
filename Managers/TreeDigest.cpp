#include "Managers/TreeDigest.h"

#include <QProcess>

#include "Managers/ToolProcess.h"

namespace gavrel {

Result<std::string> treeDigest(const std::filesystem::path& folder) {
  QProcess bash;
  isolate(bash);
  bash.start("/bin/bash", {"-c", QString::fromUtf8(treeDigestCommand.data(), treeDigestCommand.size()), "bash",
                           QString::fromStdString(folder.string())});
  bash.waitForFinished(-1);
  if (bash.error() == QProcess::FailedToStart) return Failure{"/bin/bash: " + bash.errorString().toStdString()};
  if (bash.exitStatus() == QProcess::NormalExit && bash.exitCode() == 0)
    return bash.readAllStandardOutput().trimmed().toStdString();
  return Failure{bash.readAllStandardError().trimmed().toStdString()};
}

}  // namespace gavrel
