#include <nlohmann/json.hpp>
#include <string>

#include "DataModel/ProjectFile.h"
#include "Platform/JsonFault.h"
#include "Tests/Fuzz/Require.h"

using namespace gavrel;

namespace {

using nlohmann::json;

/// Numbers as another parser reads them: doubles by strtod, which rounds correctly, whole numbers without a fraction or
/// exponent as such.
void requireSame(double number, const json& spelled) {
  require(number == spelled.get<double>(), "a number that is not the nearest double");
}
void requireSame(std::int64_t number, const json& spelled) {
  const bool isWhole = spelled.is_number_integer();
  require(isWhole ? number == spelled.get<std::int64_t>() : static_cast<double>(number) == spelled.get<double>(),
          "a whole number that is another one");
}
void requireSame(bool truth, const json& spelled) {
  require(truth == spelled.get<bool>(), "true that is false");
}

template <class Entry>
void requireSame(const std::vector<Entry>& array, const json& spelled) {
  require(array.size() == spelled.size(), "an array of another length");
  for (std::size_t i = 0; i < array.size(); ++i) {
    if constexpr (requires { Entry::fields; }) {
      forEachField<Entry>(
          [&](const auto& field) { requireSame(array[i].*field.member, spelled[i].at(std::string(field.key))); });
    } else {
      requireSame(array[i], spelled[i]);
    }
  }
}

void requireSame(const Project& project, const json& spelled) {
  requireSame(*project.trussElements, spelled.at("trussElements"));
  requireSame(*project.beamElements, spelled.value("beamElements", json()));
  requireSame(*project.X_I, spelled.at("X_I"));
  requireSame(*project.F_I, spelled.at("F_I"));
  requireSame(*project.D_I, spelled.at("D_I"));
}

/// Reads the text piece by piece; a piece is so short that a small text has several.
std::optional<ProjectContents> readInPieces(std::string_view text) {
  const auto source = [text](char* block, std::size_t size) mutable {
    const std::size_t got = text.copy(block, size);
    text.remove_prefix(got);
    return got;
  };
  constexpr std::size_t pieceSize = 64;
  return readContentsInPieces(source, text.size(), pieceSize);
}

}  // namespace

/// Whatever the bytes, reading a project ends with a reason or with a project that holds what they say and survives
/// writing and reading.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string text(toText(data, size));
  const auto project = decodeProject(text);
  auto inPieces = readInPieces(text);
  if (!project) {
    require(!inPieces, "a fault that does not show in pieces");
    const std::string& reason = project.failure().reason;
    require(!reason.empty(), "a failure without a reason");
    require(reason.starts_with("not valid JSON at line ") == findJsonFault(text).has_value(),
            "a fault without its place");
    return 0;
  }
  require(text.find('\0') == std::string::npos, "a project from a text with a zero byte");
  requireSame(**project, json::parse(text));  // ends the process where the text is no JSON

  const auto written = encodeProject(**project);
  require(static_cast<bool>(written), "a project that was read cannot be written");
  if (inPieces) {
    const auto likewise = encodeProject(*makeProject(std::move(*inPieces)));
    require(likewise && *likewise == *written, "another project when it is read in pieces");
  }
  const auto again = decodeProject(*written);
  require(static_cast<bool>(again), "a project that was written cannot be read");
  const auto rewritten = encodeProject(**again);
  require(rewritten && *rewritten == *written, "the project changed on its way through a file");
  return 0;
}
