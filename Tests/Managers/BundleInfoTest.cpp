#include "Managers/BundleInfo.h"

#include <gtest/gtest.h>

#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

namespace fs = std::filesystem;

std::string propertyList(const std::string& executable) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
         "<key>CFBundleName</key><string>A &amp; Ö</string>"
         "<key>CFBundleVersion</key><integer>7</integer>"
         "<key>Nested</key><dict><key>CFBundleVersion</key><string>8</string></dict>"
         "<key>CFBundleExecutable</key><string>" +
         executable + "</string></dict></plist>";
}

TEST(BundleInfo, IsReadFromTheBundleAroundTheProgram) {
  const TemporaryFolder files;
  fs::create_directories(files / "a b.app/bin/deep.app");
  files.put("a b.app/Info.plist", propertyList("bin/deep.app/program"));
  files.put("a b.app/bin/deep.app/Info.plist", propertyList("other"));
  const BundleInfo info =
      BundleInfo::findAround(files / "a b.app/bin/deep.app/program", {{"CFBundleName", "not this"}});
  EXPECT_EQ(info.url, files / "a b.app");
  EXPECT_EQ(info.executable, "bin/deep.app/program");
  EXPECT_EQ(info.text("CFBundleName"), "A & Ö");
  EXPECT_EQ(info.text("CFBundleVersion"), std::nullopt);  // no text
  EXPECT_EQ(info.text("CFBundleShortVersionString"), std::nullopt);
}

TEST(BundleInfo, PropertyListsThatAreNoneOrTooLargeAreNotRead) {
  const auto readsAsNone = [](const std::string& list) { return BundleInfo::parseTexts(list).empty(); };
  EXPECT_FALSE(readsAsNone(propertyList("a")));
  const char binary[] =
      "bplist00\xd1\1\2b\0\xe9\0\0Qx\x08\x0b\x10\0\0\0\0\0\0\1\1\0\0\0\0\0\0\0\3\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x12";
  EXPECT_TRUE(readsAsNone({binary, sizeof binary - 1}));  // a key with a zero byte
  std::string nested = "<plist>";
  for (int level = 0; level < 9000; ++level) nested += "<array>";
  EXPECT_TRUE(readsAsNone(nested));
  EXPECT_TRUE(readsAsNone(""));

  const TemporaryFolder files;
  fs::create_directories(files / "a.app");
  files.put("a.app/Info.plist", propertyList("program") + std::string(100000, ' '));
  EXPECT_EQ(BundleInfo::findAround(files / "a.app/program").url, std::nullopt);
  fs::remove(files / "a.app/Info.plist");
  fs::create_symlink("/dev/zero", files / "a.app/Info.plist");
  EXPECT_EQ(BundleInfo::findAround(files / "a.app/program").url, std::nullopt);
}

TEST(BundleInfo, ProgramsElsewhereStandInNone) {
  const TemporaryFolder files;
  for (const char* folder : {"home.app/build", "other.app/bin", "broken.app/bin", "plain/bin"})
    fs::create_directories(files / folder);
  files.put("other.app/Info.plist", propertyList("bin/another"));
  files.put("broken.app/Info.plist", propertyList("bin/program").substr(0, 150));
  files.put("plain/Info.plist", propertyList("bin/program"));
  for (const char* program :
       {"home.app/build/program", "other.app/bin/program", "broken.app/bin/program", "plain/bin/program"}) {
    const BundleInfo info = BundleInfo::findAround(files / program, {{"CFBundleName", "built in"}});
    EXPECT_EQ(info.url, std::nullopt) << program;
    EXPECT_EQ(info.text("CFBundleName"), "built in");
  }
  EXPECT_EQ(BundleInfo::findAround("").url, std::nullopt);
  EXPECT_EQ(runningProgram().filename(), "managers_tests");
  EXPECT_EQ(BundleInfo::findAround(runningProgram()).url, std::nullopt);
}

}  // namespace
