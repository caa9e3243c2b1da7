#pragma once

#include <filesystem>
#include <optional>

#include "DataModel/Project.h"
#include "Platform/Result.h"

namespace gavrel {

/// Whether displacements, strains and forces are written: those of a project that was not solved are meaningless.
enum class Results { written, leftOut };

/// Files for other programs. Each is written like a project file, in one step; the reason is returned if it was not.

/// The table of nodes or of elements as comma-separated values (RFC 4180, but with line feeds), with a heading. Results
/// that are left out are empty.
///
/// importFiles makes the same nodes and elements from them, except for the fields that a solve writes, if the elements
/// have the values that their constructors compute. Not kept are the project's name, identifiers that are not
/// positions, materials, extents that are not those of the nodes, stiffnesses that do not follow from section, modulus
/// and length, and array entries of no node. The modulus of a bar is one that gives its EAL3 again, if there is one;
/// for an EAL3 that was computed in another order there is often none, and it comes back changed by a unit or two in
/// the last place. It is empty for a bar without length or area.
[[nodiscard]] std::optional<Failure> exportNodes(const Project& project, const std::filesystem::path& path,
                                                 Results results = Results::written);
[[nodiscard]] std::optional<Failure> exportElements(const Project& project, const std::filesystem::path& path,
                                                    Results results = Results::written);

/// An unstructured grid for VTK and ParaView (VTK file format, XML, appended raw data): nodes as points in their
/// undeformed places with displacement, rotation, load, moment, and restraints as bits (1, 2, 4 for x, y, z, 8, 16, 32
/// for the rotations); elements as lines with axialForce, strain (both NaN for beams), area and kind (0 bar, 1
/// compression-only bar, 2 beam). Elements that name unknown nodes are left out.
[[nodiscard]] std::optional<Failure> exportVtu(const Project& project, const std::filesystem::path& path,
                                               Results results = Results::written);

}  // namespace gavrel
