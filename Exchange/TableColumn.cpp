#include "Exchange/TableColumn.h"

#include <array>
#include <charconv>
#include <cmath>

#include "Platform/NumberText.h"

namespace gavrel {

namespace {

template <class Array>
auto entryOrZero(const Array& array, std::int64_t i) {
  using Entry = typename Array::value_type;
  return i < std::ssize(array) ? Entry{array[static_cast<std::size_t>(i)]} : Entry{};
}

template <int direction>
Cell coordinate(const Project& project, std::int64_t node) {
  return entryOrZero(*project.X_I, 3 * node + direction);
}

template <int direction>
Cell load(const Project& project, std::int64_t node) {
  return entryOrZero(*project.F_I, dofsPerNode * node + direction);
}

template <int direction>
Cell displacement(const Project& project, std::int64_t node) {
  return entryOrZero(*project.U_I, dofsPerNode * node + direction);
}

Cell number(const Project&, std::int64_t row) {
  return row;
}

Cell held(const Project& project, std::int64_t node) {
  std::string text;
  for (std::size_t k = 0; k < heldWords.size(); ++k) {
    if (!entryOrZero(*project.D_I, dofsPerNode * node + static_cast<std::int64_t>(k))) continue;
    if (!text.empty()) text += ' ';
    text += heldWords[k];
  }
  return text;
}

/// Calls the visitor with the bar or the beam of a row.
template <class Visit>
Cell visitElement(const Project& project, std::int64_t row, Visit&& visit) {
  const auto& trusses = *project.trussElements;
  if (row < std::ssize(trusses)) return visit(trusses[static_cast<std::size_t>(row)]);
  return visit((*project.beamElements)[static_cast<std::size_t>(row - std::ssize(trusses))]);
}

template <auto cell>
Cell trussOnly(const Project& project, std::int64_t row) {
  const auto& trusses = *project.trussElements;
  return row < std::ssize(trusses) ? cell(trusses[static_cast<std::size_t>(row)]) : Cell{};
}

template <double BeamElement::*member>
Cell beamOnly(const Project& project, std::int64_t row) {
  const auto position = row - std::ssize(*project.trussElements);
  return position < 0 ? Cell{} : (*project.beamElements)[static_cast<std::size_t>(position)].*member;
}

Cell position(const Project& project, std::int64_t row) {
  const auto trusses = std::ssize(*project.trussElements);
  return row < trusses ? row : row - trusses;
}

Cell kind(const Project& project, std::int64_t row) {
  const auto trusses = std::ssize(*project.trussElements);
  if (row >= trusses)
    return (*project.beamElements)[static_cast<std::size_t>(row - trusses)].isNonLinear ? "non-linear beam" : "beam";
  const TrussElement& truss = (*project.trussElements)[static_cast<std::size_t>(row)];
  return std::string(truss.isNonLinear ? "non-linear " : "") +
         (truss.isCompressionOnly ? "compression-only bar" : "bar");
}

Cell startNode(const Project& project, std::int64_t row) {
  return visitElement(project, row, [](const auto& element) { return element.startNodeId; });
}

Cell endNode(const Project& project, std::int64_t row) {
  return visitElement(project, row, [](const auto& element) { return element.endNodeId; });
}

Cell elementLength(const Project& project, std::int64_t row) {
  return visitElement(project, row, [](const auto& element) {
    return length({element.dXx, element.dXy, element.dXz});
  });
}

Cell elementArea(const Project& project, std::int64_t row) {
  return visitElement(project, row, [](const auto& element) { return element.area; });
}

Cell axialStrain(const TrussElement& truss) {
  return truss.tensileStrain();
}

Cell axialForce(const TrussElement& truss) {
  return truss.axialForce();
}

Cell workingState(const TrussElement& truss) {
  if (!truss.isCompressionOnly) return {};
  return truss.isOut() ? "out" : "in";
}

/// The modulus from which the bar's EAL3 is computed again exactly, one with few digits if there is one. If EAL3 was
/// computed from a modulus, that lies within four doubles of the quotient; otherwise the nearest one is taken. Empty
/// for a bar without length or area.
Cell findYoungModulus(const TrussElement& truss) {
  constexpr int digits = 13;
  constexpr int furthest = 4;
  const double L = length({truss.dXx, truss.dXy, truss.dXz});
  const double L3 = std::pow(L, 3.0);
  const auto E = static_cast<double>(static_cast<long double>(truss.EAL3) * L3 / truss.area);
  if (!(L > zeroLength) || !std::isfinite(E)) return {};
  const auto error = [&](double modulus) { return std::abs(truss.area * modulus / L3 - truss.EAL3); };
  std::array<char, 32> shortened{};
  const auto* end = std::to_chars(shortened.begin(), shortened.end(), E, std::chars_format::general, digits).ptr;
  double rounded = E;
  std::from_chars(shortened.begin(), end, rounded);
  if (error(rounded) == 0) return rounded;
  double nearest = E;
  for (const double limit : {HUGE_VAL, -HUGE_VAL}) {
    double modulus = E;
    for (int i = 0; i < furthest; ++i) {
      modulus = std::nextafter(modulus, limit);
      if (error(modulus) < error(nearest)) nearest = modulus;
    }
  }
  return nearest;
}

Cell youngModulus(const Project& project, std::int64_t row) {
  return row < std::ssize(*project.trussElements)
             ? findYoungModulus((*project.trussElements)[static_cast<std::size_t>(row)])
             : beamOnly<&BeamElement::youngModulus>(project, row);
}

}  // namespace

std::span<const TableColumn> nodeColumns() {
  using enum TableColumn::Content;
  using enum TableColumn::Origin;
  static constexpr std::array columns{TableColumn{"node", wholeNumbers, input, 60, number},
                                      TableColumn{"x", numbers, input, 90, coordinate<0>},
                                      TableColumn{"y", numbers, input, 90, coordinate<1>},
                                      TableColumn{"z", numbers, input, 90, coordinate<2>},
                                      TableColumn{"Fx", numbers, input, 80, load<0>},
                                      TableColumn{"Fy", numbers, input, 80, load<1>},
                                      TableColumn{"Fz", numbers, input, 80, load<2>},
                                      TableColumn{"Mx", numbers, input, 80, load<3>},
                                      TableColumn{"My", numbers, input, 80, load<4>},
                                      TableColumn{"Mz", numbers, input, 80, load<5>},
                                      TableColumn{"held", text, input, 110, held},
                                      TableColumn{"ux", numbers, result, 105, displacement<0>},
                                      TableColumn{"uy", numbers, result, 105, displacement<1>},
                                      TableColumn{"uz", numbers, result, 105, displacement<2>},
                                      TableColumn{"θx", numbers, result, 105, displacement<3>},
                                      TableColumn{"θy", numbers, result, 105, displacement<4>},
                                      TableColumn{"θz", numbers, result, 105, displacement<5>}};
  return columns;
}

std::span<const TableColumn> elementColumns() {
  using enum TableColumn::Content;
  using enum TableColumn::Origin;
  static constexpr std::array columns{
      TableColumn{"kind", text, input, 200, kind},
      TableColumn{"number", wholeNumbers, derived, 70, position},
      TableColumn{"start", wholeNumbers, input, 60, startNode},
      TableColumn{"end", wholeNumbers, input, 60, endNode},
      TableColumn{"length", numbers, derived, 90, elementLength},
      TableColumn{"strain", numbers, result, 100, trussOnly<axialStrain>},
      TableColumn{"force", numbers, result, 100, trussOnly<axialForce>},
      TableColumn{"state", text, result, 55, trussOnly<workingState>},
      TableColumn{"area", numbers, input, 90, elementArea},
      TableColumn{"youngModulus", numbers, input, 110, youngModulus},
      TableColumn{"shearModulus", numbers, input, 110, beamOnly<&BeamElement::shearModulus>},
      TableColumn{"inertiaY", numbers, input, 90, beamOnly<&BeamElement::inertiaY>},
      TableColumn{"inertiaZ", numbers, input, 90, beamOnly<&BeamElement::inertiaZ>}};
  return columns;
}

std::int64_t elementCount(const Project& project) {
  return std::ssize(*project.trussElements) + std::ssize(*project.beamElements);
}

std::string formatCell(const Cell& cell) {
  if (const auto* whole = std::get_if<std::int64_t>(&cell)) return std::to_string(*whole);
  if (const auto* number = std::get_if<double>(&cell)) return numberText(*number);
  if (const auto* text = std::get_if<std::string>(&cell)) return *text;
  return {};
}

}  // namespace gavrel
