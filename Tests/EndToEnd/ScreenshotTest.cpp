#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>

#include "Tests/EndToEnd/Image.h"
#include "Tests/TemporaryFolder.h"

using namespace gavrel;

namespace {

const std::string example = GAVREL_EXAMPLES "/warren-truss.json";

int gavrel(const std::string& arguments) {
  const int status = std::system((GAVREL " " + arguments + " >/dev/null 2>&1").c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool shows(const Image& image, const Image::Pixel& color) {
  return std::ranges::find(image.pixels, color) != image.pixels.end();
}

TEST(Screenshot, DrawsTheProjectInTheSizeAskedFor) {
  constexpr Image::Pixel yellow{255, 255, 0}, background{128, 128, 128};
  TemporaryFolder folder;
  const std::string plain = folder / "plain.png", solved = folder / "solved.png", moved = folder / "moved.png";
  ASSERT_EQ(gavrel("--screenshot " + plain + " " + example), 0);
  ASSERT_EQ(gavrel("--screenshot " + solved + " --size 640x360 --solve --strain " + example), 0);
  ASSERT_EQ(gavrel("--screenshot " + moved + " --size 640x360 --solve --strain --magnification 5 " + example), 0);
  const Image first = Image::ofFile(plain), second = Image::ofFile(solved), third = Image::ofFile(moved);
  EXPECT_EQ(first.width, 1600);
  EXPECT_EQ(first.height, 1000);
  EXPECT_TRUE(shows(first, yellow) && shows(first, background));
  EXPECT_EQ(second.width, 640);
  EXPECT_EQ(second.height, 360);
  EXPECT_FALSE(shows(second, yellow)) << "strain colours all bars";
  EXPECT_NE(second.pixels, third.pixels);
}

TEST(Screenshot, SaysWhyThereIsNone) {
  TemporaryFolder folder;
  const std::string picture = folder / "picture.png";
  const std::string broken = folder.put("broken.json", "{");
  EXPECT_EQ(gavrel("--screenshot " + picture + " " + broken), 1);
  EXPECT_EQ(gavrel("--screenshot " + folder.path().string() + "/./broken.json " + broken), 1);
  EXPECT_EQ(folder.get("broken.json"), "{");
  EXPECT_EQ(gavrel("--screenshot " + (folder / "no/such/folder.png").string() + " " + example), 1);
  for (const auto* arguments :
       {"", "--size 0x5 ", "--size 100 ", "--size 99999x5 ", "--magnification nan ", "--nothing "})
    EXPECT_EQ(gavrel("--screenshot " + picture + " " + arguments + (*arguments == 0 ? "" : example)), 64) << arguments;
  EXPECT_EQ(gavrel("--solve " + example), 64);
  EXPECT_EQ(folder.entries(), 1) << "the broken file only";
  const std::string onFullDisk = "ulimit -f 8; " GAVREL " --screenshot " + picture + " " + example + " 2>/dev/null";
  EXPECT_EQ(std::system(onFullDisk.c_str()), 1 << 8) << "no signal ends it";
  EXPECT_EQ(folder.entries(), 1);
  EXPECT_EQ(std::system(("env -u DISPLAY " GAVREL " " + example + " 2>&1 | grep -q 'needs a display'").c_str()), 0);
}

}  // namespace
