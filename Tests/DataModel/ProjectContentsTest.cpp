#include "DataModel/ProjectContents.h"

#include <gtest/gtest.h>

#include <random>

#include "DataModel/ProjectFile.h"
#include "Platform/JsonReader.h"
#include "Tests/Structures.h"

using namespace gavrel;

namespace {

std::string toText(ProjectContents contents) {
  return *encodeProject(*makeProject(std::move(contents)));
}

/// What the text holds, written again; empty if it is faulty.
std::string readWhole(const std::string& text) try { return toText(readContents(text)); } catch (const JsonError&) {
  return "";
}

/// The same by pieces; empty, too, if it is left to the other reader.
std::string readInPieces(std::string_view text, std::size_t pieceSize) {
  const auto source = [text](char* block, std::size_t size) mutable {
    const std::size_t got = text.copy(block, size);
    text.remove_prefix(got);
    return got;
  };
  auto contents = readContentsInPieces(source, text.size(), pieceSize);
  return contents ? toText(std::move(*contents)) : "";
}

std::string makeText() {
  Project project("brackets ]}, and a \"key\": [");
  for (int i = 0; i < 12; ++i) project.addNode({0.1 * i, -2.5e-7 * i, i % 5 - 1.0});
  for (int i = 0; i < 11; ++i) addBar(project, i, i + 1, 3.7, {i % 2 == 0, i % 3 == 0});
  for (int i = 0; i < 3; ++i) addBeam(project, i, i + 2, 0.3, true);
  clamp(project, 3);
  return *encodeProject(project);
}

TEST(ProjectContents, AreTheSameInPiecesOfAnySize) {
  const std::string text = makeText();
  for (std::size_t size = 1; size < text.size() + 2; size += 1 + size / 8) EXPECT_EQ(readInPieces(text, size), text);
}

TEST(ProjectContents, OfAChangedTextAreThoseOfTheWhole) {
  const std::string text = makeText();
  constexpr std::string_view characters = "[]{},:\"\\ 0-.eX\n\x80\0";
  std::mt19937 random(7);
  std::size_t read = 0;
  for (int i = 0; i < 6000; ++i) {
    std::string changed = text;
    for (unsigned change = 0; change <= random() % 2; ++change) {
      const std::size_t place = random() % changed.size();
      changed.replace(place, random() % 3, random() % 2, characters[random() % characters.size()]);
    }
    const std::string whole = readWhole(changed);
    const std::string inPieces = readInPieces(changed, 1 + random() % 500);
    read += inPieces.empty() ? 0 : 1;
    ASSERT_TRUE(inPieces.empty() || inPieces == whole) << changed;
  }
  EXPECT_GT(read, 1000u);
}

TEST(ProjectContents, AreNotTakenFromWhatOnlyLooksLikeAnArray) {
  const std::string rest = R"("trussElements":[],"F_I":[4,5],"D_I":[true])";
  for (const std::string start : {R"({"X_I":[1,2,],"name":"",)",                  // no item after the last comma
                                  R"({"X_I":[1,,2],"name":"",)",                  // nor between two
                                  R"({"X_I":[1,2],"X_I":[3,4],"name":"",)",       // twice
                                  R"({"X_I":[1,2],"X\u005fI":[3,4],"name":"",)",  // spelled in another way
                                  R"({"X_I":[1,2] 3,"name":"",)",                 // more after it
                                  R"({"X_I":[1,2}],"name":"",)",                  // closed by another bracket
                                  R"({"x":{"X_I":[1,2]},"name":"",)",             // not of the root
                                  R"({"X_I"::[1,2],"name":"",)",                  // no pair
                                  R"({"X_I":[1,2]],"name":"",)",                  // closed twice
                                  R"({"X_I":[[1,2],[3,4]],"name":"",)",           // of arrays
                                  R"({"name":"\",\"X_I\":[1,2],\"",)", R"({"name":"\"X_I","\\\"X_I":[1,2],)"}) {
    for (const std::size_t size : {1, 3, 100}) EXPECT_EQ(readInPieces(start + rest + "}", size), "") << start;
    EXPECT_EQ(readWhole(start + rest + "}"), "") << start;
  }
  const std::string fine = R"({"name":"\"X_I\":[1","x":{"X_I":[7],"y":"[\\"},"X_I" :)"
                           "\t\n[ 1 , 2 ],";
  for (const std::size_t size : {1, 3, 100})
    EXPECT_EQ(readInPieces(fine + rest + "}", size), readWhole(fine + rest + "}"));
  EXPECT_NE(readWhole(fine + rest + "}"), "");
}

}  // namespace
