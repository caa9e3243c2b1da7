#include "Managers/Installation.h"

#include <unistd.h>

#include <QObject>
#include <QProcess>
#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "Managers/InstallerScript.h"
#include "Managers/UpdateSignature.h"
#include "Platform/AtomicFile.h"

namespace fs = std::filesystem;

namespace {

using Outcome = std::optional<UpdateError>;

UpdateError failed(const QString& reason) {
  return {UpdateError::Case::installationFailed, reason};
}

QString shown(const fs::path& path) {
  return QString::fromStdString(path.string());
}

/// Unpacks into the folder, which exists. No entry leaves it: unzip drops what points outwards in its name.
Outcome extract(const QString& archive, const fs::path& folder) {
  QProcess unzip;
  unzip.setProcessChannelMode(QProcess::MergedChannels);
  // It may ask for a password or whether to overwrite; there is nobody to answer, neither here nor on a terminal.
  unzip.setStandardInputFile(QProcess::nullDevice());
  unzip.setChildProcessModifier([] { ::setsid(); });
  unzip.start("/usr/bin/unzip", {"-q", archive, "-d", shown(folder)});
  if (!unzip.waitForStarted()) return failed("/usr/bin/unzip: " + unzip.errorString());
  unzip.waitForFinished(-1);
  if (unzip.exitStatus() == QProcess::NormalExit && unzip.exitCode() == 0) return {};
  return failed("Failed to extract update");
}

/// Whether a symbolic link in the folder leads out of it, be it by way of other links.
bool leadsOutside(const fs::path& folder) {
  const fs::path inside = fs::canonical(folder);
  return std::ranges::any_of(fs::recursive_directory_iterator(folder), [&](const fs::directory_entry& entry) {
    if (!entry.is_symlink()) return false;
    const fs::path target = fs::weakly_canonical(entry.path().parent_path() / fs::read_symlink(entry));
    return std::ranges::mismatch(inside, target).in1 != inside.end();
  });
}

/// Why the running bundle cannot be replaced by this one.
Outcome whyNotReplaceable(const BundleInfo& current, const fs::path& replacement) {
  const fs::path& url = *current.url;
  if (fs::is_symlink(replacement) || !fs::is_directory(replacement) || leadsOutside(replacement))
    return failed(QObject::tr("The update is not a self-contained application bundle."));
  if (!fs::is_regular_file(replacement / current.executable))
    return failed(QObject::tr("The update does not contain the program %1.").arg(shown(current.executable)));
  if (replacement.filename() != url.filename())
    return failed(QObject::tr("The application's folder must be called %1 to be updated; it is called %2.")
                      .arg(shown(replacement.filename()), shown(url.filename())));
  if (fs::exists(fs::symlink_status(url.string() + ".old")))
    return failed(QObject::tr("%1.old is in the way.").arg(shown(url)));
  if (::access(url.parent_path().c_str(), W_OK) != 0)
    return failed(QObject::tr("You may not write to the folder %1.").arg(shown(url.parent_path())));
  return {};
}

std::string installerScript(const BundleInfo& current, const fs::path& replacement) {
#ifdef __APPLE__
  return bundleInstallerScript(*current.url, replacement);
#else
  return linuxInstallerScript(*current.url, replacement, current.executable);
#endif
}

/// The names in a folder, hidden ones included, in the order of their bytes.
std::vector<std::string> namesIn(const fs::path& folder) {
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
  if (!installation.publicKeys.empty() &&
      !isFileSigned(installation.archive, installation.signature, installation.publicKeys))
    return UpdateError{UpdateError::Case::downloadFailed, wrongSignature()};

  const fs::path folder = fs::path(installation.archive.toStdString()).parent_path();
  const fs::path extracted = folder / "extracted";
  std::error_code ignored;
  fs::remove_all(extracted, ignored);
  fs::create_directories(extracted);
  if (const auto error = extract(installation.archive, extracted)) return error;

  const auto app = firstAppEntry(namesIn(extracted));
  if (!app) return failed("App bundle not found in update");
  if (const auto error = whyNotReplaceable(current, extracted / *app)) return error;

  const fs::path script = folder / "install.sh";
  if (const auto failure = replaceFile(script, installerScript(current, extracted / *app)))
    return failed(QString::fromStdString(failure->reason));
  constexpr auto executableForAll = fs::perms(0755);
  fs::permissions(script, executableForAll);
  if (!QProcess::startDetached("/bin/bash", {shown(script)})) return failed("/bin/bash: cannot be started");
  return {};
} catch (const fs::filesystem_error& error) {
  return failed(QString::fromLocal8Bit(error.what()));
}
