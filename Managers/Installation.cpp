#include "Managers/Installation.h"

#include <fcntl.h>

#include <QObject>
#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "Managers/ArchiveCheck.h"
#include "Managers/BundleCheck.h"
#include "Managers/InstallerScript.h"
#include "Managers/Paths.h"
#include "Managers/ToolProcess.h"
#include "Managers/TreeDigest.h"
#include "Managers/Unpacking.h"
#include "Managers/UpdateSignature.h"
#include "Platform/AtomicFile.h"
#include "Platform/FileDescriptor.h"

namespace gavrel {

namespace fs = std::filesystem;

namespace {

using Outcome = std::optional<UpdateError>;

UpdateError failed(const QString& reason) {
  return {UpdateError::Case::installationFailed, reason};
}

UpdateError failed(const Failure& failure) {
  return failed(QString::fromStdString(failure.reason));
}

std::string installerScript(const BundleInfo& current, const fs::path& replacement,
                            [[maybe_unused]] const std::string& digest) {
#ifdef __APPLE__
  return bundleInstallerScript(*current.url, replacement);
#else
  return linuxInstallerScript(*current.url, replacement, current.executable, digest);
#endif
}

/// The names in a folder, hidden ones included, in the order of their bytes.
std::vector<std::string> listNames(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
  std::ranges::sort(names);
  return names;
}

}  // namespace

Outcome startInstaller(const Installation& installation) try {
  const BundleInfo& current = installation.bundle;
  if (!current.url)
    return failed(
        QObject::tr("This copy was not installed as an application bundle. "
                    "Please update it through the package manager that installed it."));
  // Opened only once: the file that is unpacked is the one that was checked, even if it is replaced meanwhile.
  const FileDescriptor archive(::open(installation.archive.toStdString().c_str(), O_RDONLY | O_CLOEXEC));
  const bool mustBeSigned = !installation.publicKeys.empty();
  if (mustBeSigned &&
      !isFileSigned(toText(descriptorPath(archive.get())), installation.signature, installation.publicKeys))
    return UpdateError{UpdateError::Case::downloadFailed, wrongSignature()};
  if (!archive.isOpen()) return failed(cannotExtract);

  const fs::path folder = fs::path(installation.archive.toStdString()).parent_path();
  const fs::path extracted = folder / "extracted";
  std::error_code ignored;
  fs::remove_all(extracted, ignored);
  fs::create_directories(extracted);
  const auto content = readContent(descriptorPath(archive.get()));
  if (!content) return failed(content.failure());
  if (const auto reason = whyNoRoom(*content, extracted, current.url->parent_path())) return failed(*reason);
  if (const auto reason = unpack(archive, *content, extracted)) return failed(*reason);

  const auto app = firstAppEntry(listNames(extracted));
  if (!app) return failed("App bundle not found in update");
  const fs::path replacement = extracted / *app;
  // Before the checks, so that the script finds any later change.
  const auto digest = treeDigest(replacement);
  if (!digest) return failed(digest.failure());
  if (const auto reason = whyNotReplaceable(current, replacement)) return failed(*reason);
  if (mustBeSigned)
    if (const auto reason = whyNotOffered(current, installation.offered, replacement)) return failed(*reason);

  const fs::path script = folder / "install.sh";
  if (const auto failure = replaceFile(script, installerScript(current, replacement, *digest))) return failed(*failure);
  constexpr auto executableForAll = fs::perms(0755);
  fs::permissions(script, executableForAll);
  if (const auto failure = startScript(script)) return failed(*failure);
  return {};
} catch (const fs::filesystem_error& error) {
  return failed(QString::fromLocal8Bit(error.what()));
}

}  // namespace gavrel
