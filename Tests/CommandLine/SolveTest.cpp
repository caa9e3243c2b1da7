#include <gmock/gmock.h>
#include <simdjson.h>

#include <csignal>

#include "Tests/CommandLine/Command.h"
#include "Tests/TemporaryFolder.h"

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

std::vector<std::string> keysOf(simdjson::dom::object object) {
  std::vector<std::string> keys;
  for (const auto field : object) keys.emplace_back(field.key);
  return keys;
}

std::vector<double> numbersOf(simdjson::dom::object object, std::string_view key) {
  std::vector<double> numbers;
  for (const simdjson::dom::element number : object[key]) numbers.push_back(double(number));
  return numbers;
}

}  // namespace

TEST(Solve, PrintsTheNormsAndNothingElse) {
  const TemporaryFolder folder;
  const auto outcome = gavrelCli({"solve", folder.put("bar.json", singleBarJson())});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "\n1.0\n0.0\n");
  EXPECT_EQ(outcome.errors, "");
}

TEST(Solve, WritesTheResultsOfTheLastStep) {
  const TemporaryFolder folder;
  const auto outcome = gavrelCli({"solve", folder.put("bar.json", singleBarJson()), "-o", folder / "result.json"});
  ASSERT_EQ(outcome.status, 0);
  simdjson::dom::parser parser;
  const simdjson::dom::object result = parser.parse(folder.get("result.json"));
  EXPECT_THAT(keysOf(result),
              ElementsAre("name", "converged", "norms", "U_I", "dU_I", "R_I", "trussElements", "beamElements"));
  EXPECT_EQ(std::string_view(result["name"]), "Single bar");
  EXPECT_TRUE(bool(result["converged"]));
  EXPECT_THAT(numbersOf(result, "norms"), ElementsAre(1, 0));
  EXPECT_THAT(numbersOf(result, "U_I"), ElementsAre(0, 0, 0, 0, 0, 0, 0.02, 0, 0, 0, 0, 0));
  EXPECT_THAT(numbersOf(result, "dU_I"), ElementsAre(0, 0, 0, 0, 0, 0, 0.02, 0, 0, 0, 0, 0));
  EXPECT_THAT(numbersOf(result, "R_I"), ElementsAre(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
  const simdjson::dom::object bar = result["trussElements"].at(0);
  EXPECT_EQ(keysOf(bar).size(), 15);
  EXPECT_DOUBLE_EQ(double(bar["dUx"]), -0.02);
  EXPECT_DOUBLE_EQ(double(bar["currentStrain"]), 0.04);
}

TEST(Solve, TellsWhenItDidNotConverge) {
  const TemporaryFolder folder;
  const std::string model = folder.put("drift.json", loadOnRestraintJson());
  const auto lenient = gavrelCli({"solve", model, "-o", folder / "result.json"});
  EXPECT_EQ(lenient.status, 0);
  EXPECT_EQ(std::ranges::count(lenient.output, '\n'), 51);
  EXPECT_THAT(lenient.errors, HasSubstr("did not converge"));
  EXPECT_THAT(folder.get("result.json"), HasSubstr("\"converged\": false"));
  EXPECT_EQ(gavrelCli({"solve", model, "--strict"}).status, 2);
}

TEST(Solve, WritesNormsThatAreNotNumbersAsNull) {
  const TemporaryFolder folder;
  std::string json = singleBarJson();
  json.replace(json.find("20, 0"), 2, "0");
  const auto outcome = gavrelCli({"solve", folder.put("unloaded.json", json), "-o", folder / "result.json"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.output, StartsWith("\nnan\nnan\n"));
  EXPECT_THAT(folder.get("result.json"), HasSubstr("\"norms\": [\n    null,\n    null,"));
}

TEST(Solve, ShowsProgressAndSummaryOnStandardErrorOnly) {
  const TemporaryFolder folder;
  const std::string model = folder.put("bar.json", singleBarJson());
  const auto onTerminal = gavrelCli({"solve", model}, {.outputPath = "", .errorsToTerminal = true});
  EXPECT_EQ(onTerminal.output, "\n1.0\n0.0\n");
  EXPECT_THAT(onTerminal.errors, HasSubstr("step  1   norm 1.0"));
  EXPECT_THAT(onTerminal.errors, HasSubstr("step  2   norm 0.0"));

  const auto summary = gavrelCli({"solve", model, "--summary"});
  EXPECT_EQ(summary.output, "\n1.0\n0.0\n");
  EXPECT_THAT(summary.errors, HasSubstr("0.02 at node 1"));
  EXPECT_THAT(summary.errors, HasSubstr("Largest tension        20 at bar 0"));
  EXPECT_THAT(summary.errors, Not(HasSubstr("compression")));
}

TEST(Solve, AbortsWithOneLineOnAnUnstableStructure) {
  const TemporaryFolder folder;
  std::string json = singleBarJson();
  json.replace(json.find("\"EAL3\": 250"), 11, "\"EAL3\": -250");
  folder.put("result.json", "old");
  const auto outcome = gavrelCli({"solve", folder.put("bad.json", json), "-o", folder / "result.json"});
  EXPECT_EQ(outcome.signal, SIGABRT);
  EXPECT_EQ(outcome.output, "\n");
  EXPECT_THAT(outcome.errors, StartsWith("Fatal error: the structure is unstable at node 0, translation along x"));
  EXPECT_THAT(outcome.errors, EndsWith("\n"));
  EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 1);
  EXPECT_EQ(folder.get("result.json"), "old");
}
