#include <QFileInfo>

#include "Tests/Fuzz/Require.h"
#include "Workbench/RecentPaths.h"

using namespace gavrel;

/// Whatever the settings, what they name are files that are there; a file that is added comes first, and is read back.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  static int run = 0;  // Qt keeps what it has read of a file by its name
  const std::string name = std::to_string(run++) + ".ini";
  const QString file = QString::fromStdString(inputFolder().put(name, toText(data, size)));
  RecentPaths recent(file);
  const QStringList found = recent.all();
  for (const QString& path : found) require(QFileInfo::exists(path), "a file that is not there");
  if (found.isEmpty()) {  // adding takes long
    std::filesystem::remove(inputFolder() / name);
    return 0;
  }
  static const QString added = QString::fromStdString(inputFolder().put("a, \"ö\";=%.json", ""));
  recent.add(added);
  const QStringList kept = RecentPaths(file).all();
  require(!kept.isEmpty() && kept.front() == added && kept.size() <= 10, "an added file is not kept");
  std::filesystem::remove(inputFolder() / name);
  return 0;
}
