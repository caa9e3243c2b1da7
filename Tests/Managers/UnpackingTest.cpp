#include "Managers/Unpacking.h"

#include <fcntl.h>
#include <gmock/gmock.h>

#include "Tests/Managers/ManagerCase.h"

using namespace gavrel;

namespace {

namespace fs = std::filesystem;

/// An archive that is unpacked as an update's is, after it was tampered with.
class Unpacking : public testing::Test {
 protected:
  void zip(const QStringList& names) {
    fs::remove(files / "a.zip");
    runTool("zip", QStringList{"-q", "a.zip"} + names, QString::fromStdString(files.path().string()));
    bytes = files.get("a.zip");
  }

  void write(std::size_t place, std::uint64_t number, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) bytes[place + i] = static_cast<char>(number >> 8 * i);
  }

  /// Changes what the directory tells of the sizes of all entries but the first `spared`.
  void tellSizes(std::uint64_t size, int spared = 0) {
    for (std::size_t at = 0; (at = bytes.find("PK\x01\x02", at)) != std::string::npos; ++at)
      if (--spared < 0) write(at + 24, size, 4);
  }

  /// The reason if it is refused.
  [[nodiscard]] std::string outcome() const {
    files.put("a.zip", bytes);
    fs::remove_all(folder);
    fs::create_directory(folder);
    const auto content = readContent(files / "a.zip");
    if (!content) return content.failure().reason;
    const FileDescriptor archive(::open((files / "a.zip").c_str(), O_RDONLY | O_CLOEXEC));
    return unpack(archive, *content, folder).value_or("").toStdString();
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
  const std::string refused = "The update's archive is refused: ";
  files.put("zeros", std::string(1'000'000, '\0'));
  zip({"zeros"});
  EXPECT_EQ(outcome(), refused + "it has more than 200 times its size when unpacked.");

  for (const char* name : {"a", "b", "line\nfeed"}) files.put(name, text(1000));
  zip({"a", "line\nfeed"});
  EXPECT_EQ(outcome(), refused + "the name of entry 2 has control characters.");

  zip({"a", "b"});
  EXPECT_EQ(outcome(), "");
  tellSizes(0xfffffff0);
  EXPECT_EQ(outcome(), refused + "it has more than 4 GiB when unpacked.");

  zip({"a"});
  const std::size_t start = bytes.find("PK\x01\x02");
  std::size_t end = bytes.find("PK\x05\x06");
  const std::string entry = bytes.substr(start, end - start);
  for (int i = 1; i < 20'001; ++i, end += entry.size()) bytes.insert(end, entry);
  for (const std::size_t count : {8, 10}) write(end + count, 20'001, 2);
  write(end + 12, end - start, 4);
  EXPECT_EQ(outcome(), refused + "it has 20001 entries, and at most 20000 are unpacked.");
}

TEST_F(Unpacking, ArchivesThatLieAboutSizesDoNotFillTheDisk) {
  const std::string large = text(200'000);
  QStringList names;
  for (const char name : {'a', 'b', 'c', 'd'}) files.put(std::string(1, name), large), names += QChar(name);
  zip({"a"});
  tellSizes(10);
  EXPECT_EQ(outcome(), cannotExtract);
  EXPECT_LE(fs::file_size(folder / "a"), 10u);
  write(22, 10, 4);  // in the entry's own header, too
  EXPECT_EQ(outcome(), cannotExtract);
  EXPECT_LE(fs::file_size(folder / "a"), 10u);

  zip(names);
  EXPECT_EQ(outcome(), "");
  tellSizes(10, 1);  // none is larger than what is told of the first
  EXPECT_EQ(outcome(), cannotExtract);
}

TEST_F(Unpacking, RoomIsAskedForInBothPlaces) {
  const ArchiveContent huge{.entries = 1, .bytes = std::uint64_t{1} << 62, .largestEntry = 0};
  const std::string folderText = files.path().string();
  EXPECT_THAT(whyNoRoom(huge, files.path(), files.path())->toStdString(),
              testing::MatchesRegex("There is not enough room in " + folderText +
                                    ": the update needs 9223372036855 MB, and [0-9]+ MB are free."));
  EXPECT_THAT(whyNoRoom(huge, files.path(), "/proc")->toStdString(), testing::HasSubstr("needs 4611686018428 MB"));
  const ArchiveContent small{.entries = 1, .bytes = 1, .largestEntry = 1};
  EXPECT_EQ(whyNoRoom(small, files.path(), files.path()), std::nullopt);
  EXPECT_THAT(whyNoRoom(small, files.path(), "/proc")->toStdString(), testing::HasSubstr("room in /proc: "));
}

}  // namespace
