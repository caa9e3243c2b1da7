#include "Managers/Unpacking.h"

#include <fcntl.h>
#include <gmock/gmock.h>

#include "Tests/Managers/ManagerCase.h"

namespace {

namespace fs = std::filesystem;

/// An archive that is unpacked as an update's is, after its directory was tampered with.
class Unpacking : public testing::Test {
 protected:
  /// Zips these files, with their folders.
  void zip(const QStringList& names) {
    runTool("zip", QStringList{"-qr", "a.zip"} + names, QString::fromStdString(files.path().string()));
    bytes = files.get("a.zip");
  }

  [[nodiscard]] std::size_t entryOfDirectory(std::size_t from = 0) const { return bytes.find("PK\x01\x02", from); }

  void write(std::size_t place, std::uint64_t number, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) bytes[place + i] = static_cast<char>(number >> 8 * i);
  }

  /// The reason if it is refused.
  [[nodiscard]] std::string outcome() const {
    files.put("a.zip", bytes);
    fs::remove_all(folder);
    fs::create_directory(folder);
    const auto content = contentOf(files / "a.zip");
    if (!content) return content.failure().reason;
    const FileDescriptor archive(::open((files / "a.zip").c_str(), O_RDONLY | O_CLOEXEC));
    return unpack(archive, *content, folder).value_or("").toStdString();
  }

  [[nodiscard]] std::uintmax_t unpackedBytes() const {
    std::uintmax_t sum = 0;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
      if (entry.is_regular_file()) sum += entry.file_size();
    return sum;
  }

  std::string bytes;
  TemporaryFolder files;
  const fs::path folder = files / "unpacked";
};

/// Text that is packed to about a fifth.
std::string text(int lines) {
  std::string all;
  for (int i = 0; i < lines; ++i) all += std::to_string(i) + '\n';
  return all;
}

TEST_F(Unpacking, ArchivesBeyondTheLimitsAreNotBegun) {
  files.put("zeros", std::string(1'000'000, '\0'));
  zip({"zeros"});
  EXPECT_EQ(outcome(), "The update's archive is refused: it has more than 200 times its size when unpacked.");

  fs::remove(files / "a.zip");
  files.put("a", text(1000));
  files.put("b", text(1000));
  zip({"a", "b"});
  EXPECT_EQ(outcome(), "");
  constexpr std::size_t unpackedSize = 24;  // in an entry of the directory
  for (auto entry = entryOfDirectory(); entry != std::string::npos; entry = entryOfDirectory(entry + 1))
    write(entry + unpackedSize, 0xfffffff0, 4);
  EXPECT_EQ(outcome(), "The update's archive is refused: it has more than 4 GiB when unpacked.");

  for (const char* name : {"line\nfeed", "escape\x1b"}) {
    fs::remove(files / "a.zip");
    files.put(name, "");
    zip({"a", name});
    EXPECT_EQ(outcome(), "The update's archive is refused: the name of entry 2 has control characters.") << name;
  }

  fs::remove(files / "a.zip");
  zip({"a"});
  const std::size_t start = entryOfDirectory();
  const std::size_t end = bytes.find("PK\x05\x06");
  const std::string entry = bytes.substr(start, end - start);
  const std::string tail = bytes.substr(end);
  bytes.resize(start);
  for (int i = 0; i < 20'001; ++i) bytes += entry;
  const std::size_t newEnd = bytes.size();
  bytes += tail;
  write(newEnd + 8, 20'001, 2);
  write(newEnd + 10, 20'001, 2);
  write(newEnd + 12, newEnd - start, 4);
  EXPECT_EQ(outcome(), "The update's archive is refused: it has 20001 entries, and at most 20000 are unpacked.");
}

TEST_F(Unpacking, ArchivesThatLieAboutSizesDoNotFillTheDisk) {
  constexpr std::size_t unpackedSizeHere = 22;  // in the entry's own header
  constexpr std::size_t unpackedSize = 24;
  const std::string large = text(200'000);
  files.put("a", large);
  zip({"a"});
  write(entryOfDirectory() + unpackedSize, 10, 4);
  EXPECT_EQ(outcome(), cannotExtract);
  EXPECT_LE(unpackedBytes(), 10u);
  write(unpackedSizeHere, 10, 4);
  EXPECT_EQ(outcome(), cannotExtract);
  EXPECT_LE(unpackedBytes(), 10u);

  // No entry alone is larger than the directory tells of another.
  for (int i = 0; i < 20; ++i) files.put("f" + std::to_string(i), large);
  fs::remove(files / "a.zip");
  QStringList names{"a"};
  for (int i = 0; i < 20; ++i) names += "f" + QString::number(i);
  zip(names);
  EXPECT_EQ(outcome(), "");
  EXPECT_EQ(unpackedBytes(), 21 * large.size());
  for (auto entry = entryOfDirectory(entryOfDirectory() + 1); entry != std::string::npos;
       entry = entryOfDirectory(entry + 1))
    write(entry + unpackedSize, 1, 4);
  EXPECT_EQ(outcome(), cannotExtract);
}

TEST_F(Unpacking, RoomIsAskedForInBothPlaces) {
  const ArchiveContent huge{.entries = 1, .bytes = std::uint64_t{1} << 62, .largestEntry = 0};
  const auto lack = whyNoRoom(huge, files.path(), files.path());
  ASSERT_TRUE(lack);
  EXPECT_THAT(lack->toStdString(),
              testing::MatchesRegex("There is not enough room in " + files.path().string() +
                                    ": the update needs 9223372036855 MB, and [0-9]+ MB are free."));
  EXPECT_THAT(whyNoRoom(huge, files.path(), "/proc")->toStdString(), testing::HasSubstr("needs 4611686018428 MB"));
  const ArchiveContent small{.entries = 1, .bytes = 1, .largestEntry = 1};
  EXPECT_EQ(whyNoRoom(small, files.path(), files.path()), std::nullopt);
  EXPECT_THAT(whyNoRoom(small, files.path(), "/proc")->toStdString(), testing::HasSubstr("room in /proc: "));
}

}  // namespace
