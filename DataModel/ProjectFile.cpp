#include "DataModel/ProjectFile.h"

#include <cmath>
#include <utility>

#include "Platform/AtomicFile.h"
#include "Platform/FileBytes.h"
#include "Platform/JsonReader.h"
#include "Platform/NumberText.h"

namespace {

using simdjson::dom::element;
using simdjson::dom::object;

std::string notFinite(const std::string& where, double number) {
  return where + " is " + numberText(number) + ", which a project file cannot hold";
}

/// Throws JsonError for the first number that JSON cannot hold.
void requireFinite(const std::string& key, const std::vector<double>& numbers) {
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (!std::isfinite(numbers[i])) throw JsonError(notFinite(key + "[" + std::to_string(i) + "]", numbers[i]));
  }
}

template <class Record>
void requireFinite(const std::string& key, const std::vector<Record>& elements) {
  for (std::size_t i = 0; i < elements.size(); ++i) {
    forEachField<Record>([&](const auto& field) {
      if constexpr (std::is_same_v<decltype(field.member), double Record::*>) {
        const double number = elements[i].*field.member;
        if (!std::isfinite(number))
          throw JsonError(notFinite(key + "[" + std::to_string(i) + "]." + std::string(field.key), number));
      }
    });
  }
}

/// The value under `key`; throws JsonError if there is none.
element required(object fields, std::string_view key) {
  element value;
  if (fields[key].get(value) != simdjson::SUCCESS) throw JsonError("\"" + std::string(key) + "\" is missing");
  return value;
}

template <class Value>
void readRequired(object fields, std::string_view key, Value& value) {
  const element found = required(fields, key);
  try {
    readJson(found, value);
  } catch (const JsonError& error) {
    throw error.within(key);
  }
}

/// Files hold the fields in the order of declaration, so the next one is looked for first where the last one ended.
template <class Record>
void readElement(element json, Record& record) {
  const object fields = jsonObject(json);
  auto next = fields.begin();
  const auto end = fields.end();
  forEachField<Record>([&](const auto& field) {
    if (next != end && next.key() == field.key) {
      const element value = next.value();
      ++next;
      try {
        readJson(value, record.*field.member);
      } catch (const JsonError& error) {
        throw error.within("." + std::string(field.key));
      }
    } else {
      readRequired(fields, field.key, record.*field.member);
    }
  });
}

template <class Record>
std::vector<Record> readElements(std::string_view key, element json) {
  std::vector<Record> elements;
  try {
    readJsonItems(json, [&](element item) { readElement(item, elements.emplace_back()); });
  } catch (const JsonError& error) {
    throw error.within(key);
  }
  return elements;
}

std::shared_ptr<Project> readRoot(element root) {
  const object fields = jsonObject(root);
  std::string name;
  readRequired(fields, "name", name);
  auto trusses = readElements<TrussElement>("trussElements", required(fields, "trussElements"));
  std::vector<BeamElement> beams;
  element beamList;
  if (fields["beamElements"].get(beamList) == simdjson::SUCCESS && !beamList.is_null())
    beams = readElements<BeamElement>("beamElements", beamList);

  auto project = std::make_shared<Project>(std::move(name), std::move(trusses), std::move(beams));
  readRequired(fields, "X_I", project->X_I.edit());
  readRequired(fields, "F_I", project->F_I.edit());
  readRequired(fields, "D_I", project->D_I.edit());
  project->nI = project->nodeCount() * dofsPerNode;
  const auto unknowns = static_cast<std::size_t>(project->nI);
  project->U_I.edit().assign(unknowns, 0.0);
  project->dU_I.assign(unknowns, 0.0);
  project->R_I.assign(unknowns, 0.0);
  project->vv_J.assign(unknowns, 0);
  return project;
}

}  // namespace

Result<std::string> encodeProject(const Project& project) {
  try {
    if (!simdjson::validate_utf8(*project.name)) throw JsonError("the project's name is not valid UTF-8");
    requireFinite("trussElements", *project.trussElements);
    requireFinite("beamElements", *project.beamElements);
    requireFinite("X_I", *project.X_I);
    requireFinite("F_I", *project.F_I);
  } catch (const JsonError& error) {
    return Failure{error.what()};
  }
  constexpr std::size_t bytesPerElement = 360;
  constexpr std::size_t bytesPerNode = 120;
  JsonWriter json;
  json.reserve(bytesPerElement * (project.trussElements->size() + 2 * project.beamElements->size()) +
               bytesPerNode * static_cast<std::size_t>(project.nodeCount()));
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
  return json.take();
}

Result<std::shared_ptr<Project>> decodeProject(std::string json) {
  try {
    return readRoot(JsonDocument(std::move(json)).root());
  } catch (const JsonError& error) {
    return Failure{error.what()};
  }
}

std::optional<Failure> writeProject(const Project& project, const std::filesystem::path& path) {
  const auto json = encodeProject(project);
  if (!json) return json.failure();
  return replaceFile(path, *json);
}

Result<std::shared_ptr<Project>> readProject(const std::filesystem::path& path) {
  auto bytes = readFile(path);
  if (!bytes) return bytes.failure();
  return decodeProject(std::move(*bytes));
}
