#include "DataModel/ProjectFile.h"

#include <gmock/gmock.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "Tests/Structures.h"
#include "Tests/TemporaryFolder.h"
#include "Tests/Text.h"

using namespace gavrel;

namespace {

using testing::HasSubstr;
using Limits = std::numeric_limits<double>;

std::string replaced(std::string text, std::string_view from, std::string_view to) {
  const auto place = text.find(from);
  EXPECT_NE(place, std::string::npos) << from;
  return place == std::string::npos ? text : text.replace(place, from.size(), to);
}

std::string decodeForReason(const std::string& json) {
  const auto project = decodeProject(json);
  return project ? "none" : project.failure().reason;
}

/// Two nodes, a bar and a beam, every field of which has a value of its own.
const std::string small =
    R"({"name":"a","trussElements":[{"id":1,"startNodeId":2,"endNodeId":3,"materialID":4,"area":5,)"
    R"("dXx":6,"dXy":7,"dXz":8,"EAL3":9,"dUx":10,"dUy":11,"dUz":12,"currentStrain":13,"isCompressionOnly":true,)"
    R"("isNonLinear":false}],"beamElements":[{"id":1,"startNodeId":2,"endNodeId":3,"materialID":4,"area":5,"inertiaY":6,)"
    R"("inertiaZ":7,"youngModulus":8,"shearModulus":9,"dXx":10,"dXy":11,"dXz":12,"EA":13,"EIz":14,"EIy":15,"GJ":16,)"
    "\"isNonLinear\":true,\"dUx\":18,\"dUy\":19,\"dUz\":20,\"d\xCE\xB8x\":21,\"d\xCE\xB8y\":22,\"d\xCE\xB8z\":23}],"
    R"("X_I":[1,2,3,4,5,6],"F_I":[1,2,3,4,5,6,7,8,9,10,11,12],)"
    R"("D_I":[true,false,true,false,true,false,false,true,false,true,false,true]})";

TEST(ProjectFile, ReadsWhatItWrites) {
  const auto read = decodeProject(small);
  ASSERT_TRUE(read) << read.failure().reason;
  const Project& project = **read;
  EXPECT_EQ(withoutSpace(*encodeProject(project)), small);
  EXPECT_EQ(project.beamElements->front().dθz, 23);
  EXPECT_EQ(project.nI, 12);
  EXPECT_EQ(project.magnify, 1.0);
  for (const auto& array : {*project.U_I, project.dU_I, project.R_I}) EXPECT_EQ(array, std::vector<double>(12));
  EXPECT_EQ(project.vv_J, std::vector<std::int64_t>(12));
  EXPECT_TRUE(project.H_II.values.empty());
}

TEST(ProjectFile, KeepsEveryBit) {
  Project project;
  for (char c = 0; c < 127; ++c) project.name.edit() += c;
  project.name.edit() += "\x7F\xC2\x80 dθ \xF0\x9F\x98\x80";
  std::mt19937_64 random(31);
  std::vector<double> numbers{Limits::denorm_min(), -0.0,      1e300, 0.1, Limits::max(), -1e-310,
                              9007199254740993.0,   1e15 + 0.5};
  while (numbers.size() < 30000) {
    const auto number = std::bit_cast<double>(random());
    if (std::isfinite(number)) numbers.push_back(number);
  }
  project.X_I.edit() = numbers;
  project.F_I.edit() = numbers;
  BeamElement beam;
  beam.id = INT64_MIN;
  beam.materialID = INT64_MAX;
  beam.dθx = 5e-324;
  project.beamElements.edit() = {beam};

  const TemporaryFolder folder;  // the text is long enough to be written and read in pieces
  ASSERT_FALSE(writeProject(project, folder / "p.json"));
  const auto read = readProject(folder / "p.json");
  ASSERT_TRUE(read) << read.failure().reason;
  EXPECT_EQ(*(*read)->name, *project.name);
  EXPECT_EQ(*(*read)->beamElements, *project.beamElements);
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    ASSERT_EQ(std::bit_cast<std::uint64_t>((*(*read)->X_I)[i]), std::bit_cast<std::uint64_t>(numbers[i]));
    ASSERT_EQ(std::bit_cast<std::uint64_t>((*(*read)->F_I)[i]), std::bit_cast<std::uint64_t>(numbers[i]));
  }
}

TEST(ProjectFile, TellsWhatIsWrongInALargeFileAsInASmallOne) {
  Project project;
  for (int i = 0; i < 30000; ++i) project.addNode({0.5 * i, 1e-3 * i, 0});
  const std::string text = *encodeProject(project);
  ASSERT_GT(text.size(), std::size_t{1} << 20);
  const TemporaryFolder folder;
  for (const std::string& faulty :
       {text.substr(0, text.size() - 3), replaced(text, "\"F_I\"", "\"X_I\""), replaced(text, "7777.5,", "7777.5;"),
        replaced(text, "8888.5,", "null,"), replaced(text, "New Project", "\x80")}) {
    folder.put("p.json", faulty);
    const auto read = readProject(folder / "p.json");
    ASSERT_FALSE(read);
    EXPECT_EQ(read.failure().reason, decodeForReason(faulty));
  }
}

TEST(ProjectFile, ReadsWhatOthersWrite) {
  for (const auto& [from, to] : {std::pair{"\"id\":1", "\"id\":1.0"},
                                 {"\"id\":1,\"startNodeId\":2", "\"startNodeId\":2e0,\"note\":[{}],\"id\":1"},
                                 {"{\"name\":\"a\"", "\xEF\xBB\xBF {\"version\":null,\"name\":\"\\u0061\""},
                                 {"\"X_I\":[1", "\"U_I\":\"?\",\"X_I\":[0.1e1"},
                                 {"\"F_I\"", "\"a\":{\"F_I\":[3,{}]},\"b\":\"\\n\",\"c\":false,\"\\u0046_I\""},
                                 {"dθz", "d\\u03b8z"}}) {
    const auto project = decodeProject(replaced(small, from, to));
    ASSERT_TRUE(project) << to << ": " << project.failure().reason;
    EXPECT_EQ(withoutSpace(*encodeProject(**project)), small);
  }
  const auto beamList =
      small.substr(small.find("\"beamElements\""), small.find("\"X_I\"") - small.find("\"beamElements\""));
  for (const char* const instead : {"", "\"beamElements\":null,", "\"beamElements\":[],"}) {
    const auto project = decodeProject(replaced(small, beamList, instead));
    ASSERT_TRUE(project) << project.failure().reason;
    EXPECT_TRUE((*project)->beamElements->empty());
  }
  const auto uneven = decodeProject(replaced(replaced(small, "5,6]", "5,6,7]"), "11,12]", "11]"));
  ASSERT_TRUE(uneven) << uneven.failure().reason;
  EXPECT_EQ((*uneven)->nI, 12);
  EXPECT_EQ((*uneven)->X_I->size() + (*uneven)->F_I->size(), 18u);
}

TEST(ProjectFile, TellsWhatIsWrongAndWhere) {
  const char* const cases[][3] = {
      {"\"D_I\"", "\"D_i\"", "\"D_I\" is missing"},
      {"\"name\":\"a\"", "\"name\":null", "name: expected a text, found null"},
      {"\"trussElements\":[", "\"trussElements\":[7,", "trussElements[0]: expected an object, found the number 7"},
      {"\"beamElements\":[", "\"beamElements\":{},\"x\":[", "beamElements: expected an array, found an object"},
      {"\"area\":5", "\"area\":true", "trussElements[0].area: expected a number, found true"},
      {"\"isNonLinear\":false", "\"isNonLinear\":0", "trussElements[0].isNonLinear: expected true or false"},
      {"\"isNonLinear\":false", "\"isLinear\":true", "trussElements[0]: \"isNonLinear\" is missing"},
      {"\"beamElements\":[{\"id\":1", "\"beamElements\":[{\"id\":\"1\"", "beamElements[0].id: expected a whole number"},
      {"dθz", "dz", "beamElements[0]: \"dθz\" is missing"},
      {"\"F_I\":[1,2", "\"F_I\":[1,null", "F_I[1]: expected a number, found null"},
      {"\"D_I\":[true", "\"D_I\":[1", "D_I[0]: expected true or false, found the number 1"},
  };
  for (const auto& [from, to, reason] : cases)
    EXPECT_THAT(decodeForReason(replaced(small, from, to)), HasSubstr(reason));
  EXPECT_EQ(decodeForReason("[]"), "expected an object, found an array");
  EXPECT_THAT(decodeForReason(small.substr(0, 500)), HasSubstr("the text ends here"));
}

TEST(ProjectFile, RefusesToWriteWhatJsonCannotHold) {
  const TemporaryFolder folder;
  const auto file = folder.put("p.json", "old");
  const struct {
    void (*spoil)(Project&);
    const char* reason;
  } cases[] = {
      {[](Project& p) { p.X_I.edit()[1] = Limits::quiet_NaN(); }, "X_I[1] (node 0, y) is nan"},
      {[](Project& p) { p.F_I.edit()[11] = -Limits::infinity(); }, "F_I[11] (node 1, rotation about z) is -inf"},
      {[](Project& p) { p.trussElements.edit()[0].EAL3 = Limits::infinity(); }, "trussElements[0].EAL3 is inf"},
      {[](Project& p) { p.beamElements.edit()[0].dθy = Limits::quiet_NaN(); }, "beamElements[0].dθy is nan"},
      {[](Project& p) { p.name.edit() = "\xC3("; }, "name is not valid UTF-8"},
  };
  for (const auto& c : cases) {
    const auto project = decodeProject(small);
    ASSERT_TRUE(project);
    c.spoil(**project);
    const auto failure = writeProject(**project, file);
    ASSERT_TRUE(failure) << c.reason;
    EXPECT_THAT(failure->reason, HasSubstr(c.reason));
  }
  EXPECT_EQ(folder.get("p.json"), "old");
  EXPECT_EQ(folder.entries(), 1);
}

TEST(ProjectFile, WhatCouldNotBeReadAgainIsNotWritten) {
  // The longest text of everything that it can hold.
  constexpr double longest = -2.2250738585072014e-308;
  Project project(std::string(300, '\x01'));
  for (int i = 0; i < 300; ++i) {
    project.addNode({longest, longest, longest});
    project.setLoadAndRestraint(i, {longest, longest, longest}, false, false, false);
    const auto fill = [](auto& elements) {
      auto& element = elements.emplace_back();
      forEachField<std::decay_t<decltype(element)>>([&element](const auto& field) {
        auto& value = element.*field.member;
        if constexpr (std::is_same_v<decltype(value), double&>) value = longest;
        if constexpr (std::is_same_v<decltype(value), std::int64_t&>) value = std::numeric_limits<std::int64_t>::min();
      });
    };
    fill(project.trussElements.edit());
    fill(project.beamElements.edit());
  }
  Project empty("n");
  for (const Project* each : {&project, &empty}) {
    const auto size = encodeProject(*each)->size();
    EXPECT_FALSE(whyTooLarge(*each, size));
    const auto failure = whyTooLarge(*each, size - 1);
    ASSERT_TRUE(failure);
    EXPECT_THAT(failure->reason, HasSubstr("takes " + std::to_string(size) + " bytes, and at most"));
  }

  const TemporaryFolder folder;
  const auto file = folder.put("large.json", "{}");
  for (const auto& [size, reason] : {std::pair{std::uint64_t{1} << 32, "it has 4294967296 bytes, and at most"},
                                     {std::uint64_t{1} << 40, "it has 1099511627776 bytes, and at most"}}) {
    std::filesystem::resize_file(file, size);  // without a byte on the disk
    EXPECT_THAT(readProject(file).failure().reason, HasSubstr(reason));
  }
}

}  // namespace
