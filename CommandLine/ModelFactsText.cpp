#include <sstream>
#include <string_view>

#include "CommandLine/ModelFacts.h"
#include "Platform/JsonWriter.h"
#include "Platform/NumberText.h"
#include "Platform/ShownText.h"

namespace gavrel {

namespace {

constexpr std::size_t labelWidth = 24;

std::string text(const Vector3& v) {
  return "(" + numberText(v.x) + ", " + numberText(v.y) + ", " + numberText(v.z) + ")";
}

/// "none", or how many there are and the first of them.
std::string text(const std::vector<std::int64_t>& positions) {
  if (positions.empty()) return "none";
  constexpr std::size_t shown = 10;
  std::string list = std::to_string(positions.size()) + ":";
  for (std::size_t i = 0; i < positions.size() && i < shown; ++i) list += " " + std::to_string(positions[i]);
  return positions.size() > shown ? list + " ..." : list;
}

void write(JsonWriter& json, const Vector3& v) {
  json.beginArray();
  for (const double component : {v.x, v.y, v.z}) json.value(component);
  json.end();
}

void write(JsonWriter& json, std::string_view key, const std::vector<std::int64_t>& positions) {
  json.key(key);
  json.beginArray();
  for (const std::int64_t position : positions) json.value(position);
  json.end();
}

}  // namespace

std::string ModelFacts::toText() const {
  std::ostringstream out;
  const auto line = [&out](std::string label, const std::string& content) {
    label.resize(labelWidth, ' ');
    out << label << content << '\n';
  };
  const auto count = [](std::int64_t number) { return std::to_string(number); };
  line("Project", shownText(name));
  line("Nodes", count(nodes));
  line("Bars", count(trusses) + " (" + count(nonLinearTrusses) + " non-linear, " + count(compressionOnlyTrusses) +
                   " compression-only)");
  line("Beams", count(beams));
  line("Extents", extents ? text(extents->least) + " to " + text(extents->greatest) : "none");
  line("Degrees of freedom",
       count(dofsPerNode * nodes) + ", " + count(restrainedDofs) + " restrained, " + count(loadedDofs) + " loaded");
  line("Total load", text(totalLoad));
  line("Bars of zero length", text(connectivity.zeroLengthTrusses));
  line("Beams of zero length", text(connectivity.zeroLengthBeams));
  line("Nodes without elements", text(connectivity.nodesWithoutElements));
  if (loadedRestrainedDofs > 0)
    line("Note",
         count(loadedRestrainedDofs) + " restrained degrees of freedom carry a load; a solve will not converge");
  if (!connectivity.trussesWithUnknownNodes.empty())
    line("Note", "bars with unknown nodes: " + text(connectivity.trussesWithUnknownNodes));
  if (!connectivity.beamsWithUnknownNodes.empty())
    line("Note", "beams with unknown nodes: " + text(connectivity.beamsWithUnknownNodes));
  for (const auto& misfit : arrayLengths.misfits) line("Note", misfit.text());
  return out.str();
}

std::string ModelFacts::toJson() const {
  JsonWriter json;
  const auto count = [&json](std::string_view key, std::int64_t number) {
    json.key(key);
    json.value(number);
  };
  json.beginObject();
  json.key("name");
  json.value(std::string_view(name));
  count("nodes", nodes);
  count("trusses", trusses);
  count("compressionOnlyTrusses", compressionOnlyTrusses);
  count("nonLinearTrusses", nonLinearTrusses);
  count("beams", beams);
  json.key("extents");
  json.beginArray();
  if (extents) {
    write(json, extents->least);
    write(json, extents->greatest);
  }
  json.end();
  count("degreesOfFreedom", dofsPerNode * nodes);
  count("restrainedDofs", restrainedDofs);
  count("loadedDofs", loadedDofs);
  count("loadedRestrainedDofs", loadedRestrainedDofs);
  json.key("totalLoad");
  write(json, totalLoad);
  write(json, "zeroLengthTrusses", connectivity.zeroLengthTrusses);
  write(json, "zeroLengthBeams", connectivity.zeroLengthBeams);
  write(json, "nodesWithoutElements", connectivity.nodesWithoutElements);
  write(json, "trussesWithUnknownNodes", connectivity.trussesWithUnknownNodes);
  write(json, "beamsWithUnknownNodes", connectivity.beamsWithUnknownNodes);
  json.key("arrayMisfits");
  json.beginArray();
  for (const auto& misfit : arrayLengths.misfits) {
    json.beginObject();
    json.key("array");
    json.value(misfit.array);
    count("entries", misfit.entries);
    count("wanted", misfit.wanted);
    json.end();
  }
  json.end();
  json.end();
  return json.take();
}

}  // namespace gavrel
