#include <bit>
#include <functional>
#include <limits>
#include <vector>

#include "Exchange/Export.h"
#include "Platform/AtomicFile.h"
#include "Platform/OrderedText.h"

namespace gavrel {

namespace {

constexpr std::int8_t vtkLine = 3;

/// The elements that can be drawn, in one list.
struct Line {
  std::int64_t start;
  std::int64_t end;
  double axialForce;
  double strain;
  double area;
  std::int8_t kind;
};

std::vector<Line> collectLines(const Project& project) {
  constexpr double none = std::numeric_limits<double>::quiet_NaN();
  std::vector<Line> lines;
  const auto add = [&](const Line& line) {
    const auto exists = [&](std::int64_t node) { return node >= 0 && node < project.nodeCount(); };
    if (exists(line.start) && exists(line.end)) lines.push_back(line);
  };
  for (const TrussElement& truss : *project.trussElements)
    add({truss.startNodeId, truss.endNodeId, truss.axialForce(), truss.tensileStrain(), truss.area,
         static_cast<std::int8_t>(truss.isCompressionOnly ? 1 : 0)});
  for (const BeamElement& beam : *project.beamElements)
    add({beam.startNodeId, beam.endNodeId, none, none, beam.area, 2});
  return lines;
}

/// An array of the file: the attributes of its XML element, and its numbers one after the other.
struct DataArray {
  std::string_view name;
  std::string_view type;
  int components;
  std::uint64_t bytes;
  std::int64_t rows;
  std::function<void(std::size_t first, std::size_t last, std::string& bytes)> append;  ///< some of the rows
};

template <class Number>
constexpr std::string_view typeName() {
  if constexpr (std::is_same_v<Number, double>) return "Float64";
  if constexpr (std::is_same_v<Number, std::int64_t>) return "Int64";
  return "Int8";
}

/// An array with `components` numbers for each of `rows` rows: `number(row, component)`.
template <class Number, class Read>
DataArray dataArray(std::string_view name, int components, std::int64_t rows, Read number) {
  const auto bytes = static_cast<std::uint64_t>(rows * components) * sizeof(Number);
  return {
      name, typeName<Number>(), components, bytes, rows, [=](std::size_t first, std::size_t last, std::string& text) {
        for (std::size_t row = first; row < last; ++row)
          for (int component = 0; component < components; ++component) {
            const Number value = number(static_cast<std::int64_t>(row), component);
            text.append(reinterpret_cast<const char*>(&value), sizeof value);
          }
      }};
}

/// Three of a node's entries in an array with `stride` a node; what the array lacks is 0.
auto makeVectorReader(const std::vector<double>& array, std::int64_t stride, std::int64_t first) {
  return [&array, stride, first](std::int64_t node, int component) {
    const std::int64_t i = stride * node + first + component;
    return i < std::ssize(array) ? array[static_cast<std::size_t>(i)] : 0.0;
  };
}

std::int8_t restraintBits(const Project& project, std::int64_t node) {
  int bits = 0;
  for (std::int64_t k = 0; k < dofsPerNode; ++k) {
    const std::int64_t dof = dofsPerNode * node + k;
    if (dof < std::ssize(*project.D_I) && (*project.D_I)[static_cast<std::size_t>(dof)]) bits |= 1 << k;
  }
  return static_cast<std::int8_t>(bits);
}

struct Section {
  std::string_view name;
  std::vector<DataArray> arrays;
};

std::vector<Section> collectSections(const Project& project, const std::vector<Line>& lines, Results results) {
  const std::int64_t nodes = project.nodeCount();
  const std::int64_t cells = std::ssize(lines);
  const auto onNodes = [&](std::string_view name, const std::vector<double>& array, std::int64_t stride,
                           std::int64_t first) {
    return dataArray<double>(name, 3, nodes, makeVectorReader(array, stride, first));
  };
  const auto onLines = [&](std::string_view name, double Line::*member) {
    return dataArray<double>(
        name, 1, cells, [&lines, member](std::int64_t i, int) { return lines[static_cast<std::size_t>(i)].*member; });
  };
  const auto line = [&lines](std::int64_t i) -> const Line& { return lines[static_cast<std::size_t>(i)]; };
  std::vector<Section> sections{
      {"PointData",
       {onNodes("load", *project.F_I, dofsPerNode, 0), onNodes("moment", *project.F_I, dofsPerNode, 3),
        dataArray<std::int8_t>("restraints", 1, nodes,
                               [&project](std::int64_t node, int) { return restraintBits(project, node); })}},
      {"CellData",
       {onLines("area", &Line::area),
        dataArray<std::int8_t>("kind", 1, cells, [line](std::int64_t i, int) { return line(i).kind; })}},
      {"Points", {onNodes("Points", *project.X_I, 3, 0)}},
      {"Cells",
       {dataArray<std::int64_t>(
            "connectivity", 1, 2 * cells,
            [line](std::int64_t i, int) { return i % 2 == 0 ? line(i / 2).start : line(i / 2).end; }),
        dataArray<std::int64_t>("offsets", 1, cells, [](std::int64_t i, int) { return 2 * (i + 1); }),
        dataArray<std::int8_t>("types", 1, cells, [](std::int64_t, int) { return vtkLine; })}}};
  if (results == Results::leftOut) return sections;
  const auto prepend = [](Section& section, std::vector<DataArray> arrays) {
    section.arrays.insert(section.arrays.begin(), arrays.begin(), arrays.end());
  };
  prepend(sections[0],
          {onNodes("displacement", *project.U_I, dofsPerNode, 0), onNodes("rotation", *project.U_I, dofsPerNode, 3)});
  prepend(sections[1], {onLines("axialForce", &Line::axialForce), onLines("strain", &Line::strain)});
  return sections;
}

std::string composeHead(const std::vector<Section>& sections, std::int64_t nodes, std::int64_t cells) {
  constexpr bool little = std::endian::native == std::endian::little;
  std::string head = "<?xml version=\"1.0\"?>\n<VTKFile type=\"UnstructuredGrid\" version=\"1.0\" byte_order=\"" +
                     std::string(little ? "LittleEndian" : "BigEndian") +
                     "\" header_type=\"UInt64\">\n<UnstructuredGrid>\n<Piece NumberOfPoints=\"" +
                     std::to_string(nodes) + "\" NumberOfCells=\"" + std::to_string(cells) + "\">\n";
  std::uint64_t offset = 0;
  for (const Section& section : sections) {
    head += "<" + std::string(section.name) + ">\n";
    for (const DataArray& array : section.arrays) {
      head += "<DataArray type=\"" + std::string(array.type) + "\" Name=\"" + std::string(array.name) +
              "\" NumberOfComponents=\"" + std::to_string(array.components) + "\" format=\"appended\" offset=\"" +
              std::to_string(offset) + "\"/>\n";
      offset += sizeof offset + array.bytes;
    }
    head += "</" + std::string(section.name) + ">\n";
  }
  return head + "</Piece>\n</UnstructuredGrid>\n<AppendedData encoding=\"raw\">\n_";
}

}  // namespace

std::optional<Failure> exportVtu(const Project& project, const std::filesystem::path& path, Results results) {
  const auto lines = collectLines(project);
  const auto sections = collectSections(project, lines, results);
  return replaceFile(path, [&](const ByteSink& sink) {
    constexpr std::size_t rowsPerPiece = 8192;
    sink(composeHead(sections, project.nodeCount(), std::ssize(lines)));
    for (const Section& section : sections)
      for (const DataArray& array : section.arrays) {
        sink({reinterpret_cast<const char*>(&array.bytes), sizeof array.bytes});
        makeInOrder(static_cast<std::size_t>(array.rows), rowsPerPiece, array.append, sink);
      }
    sink("\n</AppendedData>\n</VTKFile>\n");
  });
}

}  // namespace gavrel
