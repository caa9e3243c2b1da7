#include "DataModel/ProjectFile.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <new>
#include <utility>

#include "Platform/FileBytes.h"
#include "Platform/FileDescriptor.h"
#include "Platform/JsonReader.h"
#include "Platform/NumberText.h"

namespace gavrel {

namespace {

std::string describeNotFinite(const std::string& where, double number) {
  return where + " is " + numberText(number) + ", which a project file cannot hold";
}

std::string describeCoordinate(std::int64_t i) {
  return "node " + std::to_string(i / 3) + ", " + "xyz"[i % 3];
}

/// Throws JsonError for the first number that JSON cannot hold; `describe` names the node and direction of an entry.
void requireFinite(const std::string& key, const std::vector<double>& numbers,
                   std::string (*describe)(std::int64_t entry)) {
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (std::isfinite(numbers[i])) continue;
    const std::string meaning = " (" + describe(static_cast<std::int64_t>(i)) + ")";
    throw JsonError(describeNotFinite(key + "[" + std::to_string(i) + "]" + meaning, numbers[i]));
  }
}

template <class Record>
void requireFinite(const std::string& key, const std::vector<Record>& elements) {
  for (std::size_t i = 0; i < elements.size(); ++i) {
    forEachField<Record>([&](const auto& field) {
      if constexpr (std::is_same_v<decltype(field.member), double Record::*>) {
        const double number = elements[i].*field.member;
        if (!std::isfinite(number))
          throw JsonError(describeNotFinite(key + "[" + std::to_string(i) + "]." + std::string(field.key), number));
      }
    });
  }
}

void write(JsonWriter& json, const Project& project) {
  json.beginObject();
  json.key("name");
  json.value(std::string_view(*project.name));
  json.key("trussElements");
  writeElements(json, *project.trussElements);
  json.key("beamElements");
  writeElements(json, *project.beamElements);
  json.key("X_I");
  json.table(*project.X_I, 3);
  json.key("F_I");
  json.table(*project.F_I, dofsPerNode);
  json.key("D_I");
  json.table(*project.D_I, dofsPerNode);
  json.end();
}

static_assert(largestProjectFile == simdjson::SIMDJSON_MAXSIZE_BYTES);

// At most, in bytes.
constexpr std::uint64_t numberSize = 25;
constexpr std::uint64_t characterSize = 6;  // escaped
constexpr std::uint64_t aroundEach = 16;    // new line, indentation, quotes, colon, comma, braces
constexpr std::uint64_t aroundAll = 256;

template <class Record>
std::uint64_t largestSize(const std::vector<Record>& elements) {
  std::uint64_t each = aroundEach;
  forEachField<Record>([&each](const auto& field) { each += aroundEach + field.key.size() + numberSize; });
  return elements.size() * each;
}

/// An upper bound of the size of the project's text.
std::uint64_t largestSize(const Project& project) {
  const std::uint64_t numbers = project.X_I->size() + project.F_I->size() + project.D_I->size();
  return aroundAll + project.name->size() * characterSize + largestSize(*project.trussElements) +
         largestSize(*project.beamElements) + numbers * (numberSize + aroundEach);
}

/// The contents of a large file without a fault; small ones are read faster by one thread.
std::optional<ProjectContents> readLargeFile(const std::filesystem::path& path) {
  constexpr std::uint64_t smallest = std::uint64_t{1} << 20;
  std::error_code unknown;
  if (!std::filesystem::is_regular_file(path, unknown)) return std::nullopt;  // it may be read only once
  const std::uint64_t size = std::filesystem::file_size(path, unknown);
  if (unknown || size < smallest || size > largestProjectFile) return std::nullopt;
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.isOpen()) return std::nullopt;
  const auto readBlock = [&file](char* block, std::size_t room) -> std::size_t {
    ssize_t got = 0;
    do {
      got = ::read(file.get(), block, room);
    } while (got < 0 && errno == EINTR);
    return static_cast<std::size_t>(std::max(got, ssize_t{0}));  // after an error the rest is missing, which shows
  };
  return readContentsInPieces(readBlock, size);
}

}  // namespace

std::shared_ptr<Project> makeProject(ProjectContents contents) {
  auto project = std::make_shared<Project>(std::move(contents.name), std::move(contents.trussElements),
                                           std::move(contents.beamElements));
  project->X_I.edit() = std::move(contents.X_I);
  project->F_I.edit() = std::move(contents.F_I);
  project->D_I.edit() = std::move(contents.D_I);
  project->nI = project->nodeCount() * dofsPerNode;
  const auto unknowns = static_cast<std::size_t>(project->nI);
  project->U_I.edit().assign(unknowns, 0.0);
  project->dU_I.assign(unknowns, 0.0);
  project->R_I.assign(unknowns, 0.0);
  project->vv_J.assign(unknowns, 0);
  return project;
}

std::optional<Failure> whyNotEncodable(const Project& project) {
  try {
    if (!simdjson::validate_utf8(*project.name)) throw JsonError("the project's name is not valid UTF-8");
    requireFinite("trussElements", *project.trussElements);
    requireFinite("beamElements", *project.beamElements);
    requireFinite("X_I", *project.X_I, describeCoordinate);
    requireFinite("F_I", *project.F_I, describeDof);
  } catch (const JsonError& error) {
    return Failure{error.what()};
  }
  return std::nullopt;
}

std::optional<Failure> whyTooLarge(const Project& project, std::uint64_t largest) {
  if (largestSize(project) <= largest) return std::nullopt;
  std::uint64_t size = 0;
  encodeProject(project, [&size](std::string_view piece) { size += piece.size(); });
  if (size <= largest) return std::nullopt;
  return Failure{"the project is too large for a file: it takes " + std::to_string(size) + " bytes, and at most " +
                 std::to_string(largest) + " can be read again"};
}

Result<std::string> encodeProject(const Project& project) {
  if (auto fault = whyNotEncodable(project)) return *fault;
  JsonWriter json;
  write(json, project);
  return json.take();
}

void encodeProject(const Project& project, const ByteSink& sink) {
  JsonWriter json(sink);
  write(json, project);
}

Result<std::shared_ptr<Project>> decodeProject(std::string json) {
  try {
    return makeProject(readContents(std::move(json)));
  } catch (const JsonError& error) {
    return Failure{error.what()};
  }
}

std::optional<Failure> writeProject(const Project& project, const std::filesystem::path& path) {
  if (auto fault = whyNotEncodable(project)) return fault;
  if (auto fault = whyTooLarge(project)) return fault;
  return replaceFile(path, [&project](const ByteSink& sink) { encodeProject(project, sink); });
}

Result<std::shared_ptr<Project>> readProject(const std::filesystem::path& path) try {
  if (auto contents = readLargeFile(path)) return makeProject(std::move(*contents));
  auto bytes = readFile(path, largestProjectFile);
  if (!bytes) return bytes.failure();
  return decodeProject(std::move(*bytes));
} catch (const std::bad_alloc&) {
  return Failure{"not enough memory"};
}

}  // namespace gavrel
