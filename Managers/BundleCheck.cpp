#include "Managers/BundleCheck.h"

#include <unistd.h>

#include <QObject>
#include <algorithm>

#include "Managers/BundleVersion.h"
#include "Managers/LeftOvers.h"
#include "Managers/Paths.h"

namespace gavrel {

namespace fs = std::filesystem;

namespace {

QString shown(const BundleVersion& version) {
  return QObject::tr("%1 (build %2)").arg(version.version).arg(version.build);
}

/// Whether a symbolic link in the folder leads out of it, directly or by way of other links. An absolute link counts as
/// leading out wherever it leads now, since the folder will be moved.
bool leadsOutside(const fs::path& folder) {
  const fs::path inside = fs::canonical(folder);
  return std::ranges::any_of(fs::recursive_directory_iterator(folder), [&](const fs::directory_entry& entry) {
    if (!entry.is_symlink()) return false;
    const fs::path link = fs::read_symlink(entry);
    const fs::path target = fs::weakly_canonical(entry.path().parent_path() / link);
    return link.is_absolute() || std::ranges::mismatch(inside, target).in1 != inside.end();
  });
}

}  // namespace

std::optional<QString> whyNotReplaceable(const BundleInfo& current, const fs::path& replacement) {
  const fs::path& url = *current.url;
  if (fs::is_symlink(replacement) || !fs::is_directory(replacement) || leadsOutside(replacement))
    return QObject::tr("The update is not a self-contained application bundle.");
  if (!fs::is_regular_file(replacement / current.executable))
    return QObject::tr("The update does not contain the program %1.").arg(toText(current.executable));
  if (replacement.filename() != url.filename())
    return QObject::tr("The application's folder must be called %1 to be updated; it is called %2.")
        .arg(toText(replacement.filename()), toText(url.filename()));
  if (const auto failure = removeLeftOvers(current)) return QString::fromStdString(failure->reason);
  for (const char* ending : {".old", ".new"})
    if (isThere(url.string() + ending)) return QObject::tr("%1 is in the way.").arg(toText(url.string() + ending));
  if (::access(url.parent_path().c_str(), W_OK) != 0)
    return QObject::tr("You may not write to the folder %1.").arg(toText(url.parent_path()));
  return {};
}

std::optional<QString> whyNotOffered(const BundleInfo& current, const VersionInfo& offered,
                                     const fs::path& replacement) {
  const BundleInfo update = BundleInfo::read(replacement);
  const auto identifier = update.text("CFBundleIdentifier");
  const auto expected = current.text("CFBundleIdentifier");
  if (identifier != expected)
    return QObject::tr("The update is another program: its identifier is \"%1\", not \"%2\".")
        .arg(QString::fromStdString(identifier.value_or("")), QString::fromStdString(expected.value_or("")));
  const BundleVersion version = readVersion(update);
  if (version != BundleVersion{offered.version, offered.build})
    return QObject::tr("The update is version %1, and %2 was offered.")
        .arg(shown(version), shown({offered.version, offered.build}));
  if (!isNewer(version, readVersion(current)))
    return QObject::tr("The update is version %1, which is not newer than %2.")
        .arg(shown(version), shown(readVersion(current)));
  return {};
}

}  // namespace gavrel
