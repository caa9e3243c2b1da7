#include "Managers/ArchiveCheck.h"

#include <zip.h>

#include <QObject>
#include <algorithm>
#include <memory>
#include <string_view>

namespace gavrel {

namespace {

Failure refused(const QString& reason) {
  return {QObject::tr("The update's archive is refused: %1.").arg(reason).toStdString()};
}

bool isControl(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

}  // namespace

Result<ArchiveContent> readContent(const std::filesystem::path& archive) {
  const std::unique_ptr<zip_t, decltype(&zip_discard)> opened(zip_open(archive.c_str(), ZIP_RDONLY, nullptr),
                                                              &zip_discard);
  if (!opened) return Failure{cannotExtract};
  ArchiveContent content{.entries = static_cast<std::uint64_t>(zip_get_num_entries(opened.get(), ZIP_FL_UNCHANGED))};
  if (content.entries > maxEntries)
    return refused(QObject::tr("it has %1 entries, and at most %2 are unpacked").arg(content.entries).arg(maxEntries));

  for (std::uint64_t i = 0; i < content.entries; ++i) {
    const char* const name = zip_get_name(opened.get(), i, ZIP_FL_ENC_RAW);
    zip_stat_t entry;
    if (name == nullptr || zip_stat_index(opened.get(), i, ZIP_FL_UNCHANGED, &entry) != 0 ||
        (entry.valid & ZIP_STAT_SIZE) == 0)
      return Failure{cannotExtract};
    if (std::ranges::any_of(std::string_view(name), isControl))
      return refused(QObject::tr("the name of entry %1 has control characters").arg(i + 1));
    content.largestEntry = std::max(content.largestEntry, std::uint64_t{entry.size});
    if (entry.size > maxBytes || (content.bytes += entry.size) > maxBytes)
      return refused(QObject::tr("it has more than %1 GiB when unpacked").arg(maxBytes >> 30));
  }
  if (content.bytes / maxBytesPerPackedByte > std::filesystem::file_size(archive))
    return refused(QObject::tr("it has more than %1 times its size when unpacked").arg(maxBytesPerPackedByte));
  return content;
}

}  // namespace gavrel
