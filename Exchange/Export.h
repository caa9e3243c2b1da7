#pragma once

#include <filesystem>
#include <optional>

#include "DataModel/Project.h"
#include "Platform/Result.h"

namespace gavrel {

/// What becomes of displacements, strains and forces: of a project that was not solved they say nothing.
enum class Results { written, leftOut };

/// Files for other programs. Each is written like a project file, in one step; the reason is returned when it was not.

/// The table of nodes or of elements as comma-separated values (RFC 4180, but with line feeds), with a heading. Results
/// that are left out are empty.
///
/// importFiles makes the same nodes and elements of them, up to what a solve writes, if the elements are as their
/// constructors make them. Not kept are the project's name, identifiers that are not positions, materials, extents that
/// are not those of the nodes, stiffnesses that do not follow from section, modulus and length, and array entries of no
/// node. A bar's modulus is one that gives its EAL3 again, if there is one; EAL3 that were computed in another order
/// often have none, and come back changed by a unit or two in the last place. It is empty for a bar without length or
/// area.
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
