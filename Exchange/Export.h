#pragma once

#include <filesystem>
#include <optional>

#include "DataModel/Project.h"
#include "Platform/Result.h"

/// What becomes of displacements, strains and forces: of a project that was not solved they say nothing.
enum class Results { written, leftOut };

/// Files for other programs. Each is written like a project file, in one step; the reason is returned when it was not.

/// The table of nodes or of elements as comma-separated values (RFC 4180, but with line feeds), with a heading. Results
/// that are left out are empty.
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
