#include <QCryptographicHash>

#include "Tests/Fuzz/Require.h"
#include "Workbench/RecoveryFile.h"

using namespace gavrel;

/// A file without its checksum: what reads is written as a file that reads as the same.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const TemporaryFolder& folder = inputFolder();
  const std::string content(toText(data, size));
  const auto read = readRecovery(folder.put("bytes", content));
  const bool isWhole = content.size() >= 64;
  require(!read && (isWhole || read.failure().reason == "it is cut short"), "a file without a checksum was read");

  const QByteArray checksum =
      QCryptographicHash::hash({content.data(), std::ssize(content)}, QCryptographicHash::Sha256);
  const auto recovered = readRecovery(folder.put("whole", content + checksum.toHex().toStdString()));
  if (!recovered) {
    require(!recovered.failure().reason.empty(), "a failure without a reason");
    return 0;
  }
  require(!writeRecovery(folder / "written", *recovered), "what was read cannot be written");
  const auto again = readRecovery(folder / "written");
  require(static_cast<bool>(again), "what was written cannot be read");
  require(again->file == recovered->file && again->stamp == recovered->stamp, "the file or its stamp changed");
  require(!writeRecovery(folder / "rewritten", *again), "what was read again cannot be written");
  require(folder.get("written") == folder.get("rewritten"), "the project changed on its way");
  return 0;
}
