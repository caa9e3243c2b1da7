#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "DataModel/Project.h"
#include "DataModel/ProjectContents.h"
#include "Platform/AtomicFile.h"
#include "Platform/JsonWriter.h"
#include "Platform/Result.h"

namespace gavrel {

/// A project of these contents, taken as they are; displacements and work arrays are zeros.
[[nodiscard]] std::shared_ptr<Project> makeProject(ProjectContents contents);

/// Why the project cannot be written to a file: a number that is not finite, or a name that is not valid UTF-8.
[[nodiscard]] std::optional<Failure> whyNotEncodable(const Project& project);

/// The size of the largest project file, in bytes: that of the longest text that decodeProject takes.
inline constexpr std::uint64_t largestProjectFile = 0xFFFF'FFFF;

/// Fails, with its size, if the project's file would have more than `largest` bytes. Large projects are encoded to find
/// out.
[[nodiscard]] std::optional<Failure> whyTooLarge(const Project& project, std::uint64_t largest = largestProjectFile);

/// The project as JSON text: name, elements with all stored fields, coordinates, loads and restraints. Fails if the
/// project cannot be encoded.
[[nodiscard]] Result<std::string> encodeProject(const Project& project);

/// The same, passed to the sink piece by piece. The project must be one that can be encoded.
void encodeProject(const Project& project, const ByteSink& sink);

/// The project that `json` describes. Element fields are taken as stored; displacements and work arrays are zeros.
/// Fails as a whole, with the key and element or, where the text is not JSON, the line and column.
[[nodiscard]] Result<std::shared_ptr<Project>> decodeProject(std::string json);

/// Replaces the file in one step; see replaceFile. Nothing is written if the project cannot be encoded, or is too large
/// to be read again.
[[nodiscard]] std::optional<Failure> writeProject(const Project& project, const std::filesystem::path& path);

/// The project in the file; see decodeProject. A file that is too large is refused before it is read.
[[nodiscard]] Result<std::shared_ptr<Project>> readProject(const std::filesystem::path& path);

/// Writes an array of element records, every field under its key.
template <class Record>
void writeElements(JsonWriter& json, const std::vector<Record>& elements) {
  std::vector<std::string_view> names;
  forEachField<Record>([&names](const auto& field) { names.push_back(field.key); });
  const std::vector<std::string> keys = json.itemKeys(names);
  json.items(elements.size(), [&](JsonWriter& item, std::size_t i) {
    auto key = keys.begin();
    item.beginObject();
    forEachField<Record>([&](const auto& field) {
      item.itemKey(*key++);
      item.value(elements[i].*field.member);
    });
    item.end();
  });
}

}  // namespace gavrel
