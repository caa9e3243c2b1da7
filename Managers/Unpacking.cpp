#include "Managers/Unpacking.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <QObject>
#include <QProcess>
#include <system_error>

#include "Managers/ToolProcess.h"

namespace gavrel {

namespace fs = std::filesystem;

namespace {

constexpr std::uint64_t blockSize = 4096;  // a file, a folder and a link take whole blocks

/// Whether there is more in the folder than the archive's directory states. Entries that disappear during the count are
/// left out.
bool hasMoreThan(const ArchiveContent& content, const fs::path& folder) {
  ArchiveContent found;
  std::error_code gone;
  for (fs::recursive_directory_iterator entry(folder, gone), end; !gone && entry != end; entry.increment(gone)) {
    struct stat status {};
    if (::lstat(entry->path().c_str(), &status) != 0) continue;
    if (S_ISREG(status.st_mode)) found.bytes += static_cast<std::uint64_t>(status.st_size);
    if (!S_ISDIR(status.st_mode)) ++found.entries;  // the archive's directory need not list folders
  }
  return found.bytes > content.bytes || found.entries > content.entries;
}

void limitFiles(std::uint64_t bytes) {
  const rlimit limit{bytes, bytes};
  ::setrlimit(RLIMIT_FSIZE, &limit);
  const rlimit none{0, 0};
  ::setrlimit(RLIMIT_CORE, &none);  // a write beyond the limit ends unzip by a signal that would leave a core file
}

}  // namespace

std::optional<QString> whyNoRoom(const ArchiveContent& content, const fs::path& folder, const fs::path& destination) {
  struct stat here {};
  struct stat there {};
  const bool onOneDisk =
      ::stat(folder.c_str(), &here) == 0 && ::stat(destination.c_str(), &there) == 0 && here.st_dev == there.st_dev;
  const std::uint64_t once = content.bytes + content.entries * blockSize;
  const auto lacks = [](const fs::path& place, std::uint64_t needed) -> std::optional<QString> {
    constexpr std::uint64_t megabyte = 1'000'000;
    const std::uint64_t free = fs::space(place).available;
    if (needed <= free) return {};
    return QObject::tr("There is not enough room in %1: the update needs %2 MB, and %3 MB are free.")
        .arg(QString::fromStdString(place.string()))
        .arg((needed + megabyte - 1) / megabyte)
        .arg(free / megabyte);
  };
  if (auto lack = lacks(folder, onOneDisk ? 2 * once : once)) return lack;
  return lacks(destination, once);
}

std::optional<QString> unpack(const FileDescriptor& archive, const ArchiveContent& content, const fs::path& folder) {
  QProcess unzip;
  isolate(unzip, [&archive, &content] {
    limitFiles(content.largestEntry);
    ::fcntl(archive.get(), F_SETFD, 0);  // stays open in unzip
  });
  unzip.setProcessChannelMode(QProcess::MergedChannels);
  unzip.start("/usr/bin/unzip", {"-q", QString::fromStdString(descriptorPath(archive.get()).string()), "-d",
                                 QString::fromStdString(folder.string())});
  if (!unzip.waitForStarted()) return "/usr/bin/unzip: " + unzip.errorString();
  constexpr int milliseconds = 200;
  while (unzip.state() != QProcess::NotRunning && !unzip.waitForFinished(milliseconds))
    if (hasMoreThan(content, folder)) unzip.kill();
  // Tested once more for what was written since the last test.
  const bool isWhole = unzip.exitStatus() == QProcess::NormalExit && unzip.exitCode() == 0;
  if (isWhole && !hasMoreThan(content, folder)) return {};
  return cannotExtract;
}

}  // namespace gavrel
