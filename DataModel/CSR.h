#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace gavrel {

struct TrussElement;
struct BeamElement;

/// Degrees of freedom of a node: translations along and rotations about x, y, z.
inline constexpr std::int64_t dofsPerNode = 6;

/// Number of the node's first degree of freedom; an overflow is fatal.
[[nodiscard]] std::int64_t firstDof(std::int64_t node);

/// The upper triangle of a symmetric matrix in compressed rows. Rows and columns are numbered by degree of freedom.
/// Each row that an element touches begins with its diagonal; columns ascend. The same arrays are the lower triangle in
/// compressed columns.
class CSR {
 public:
  std::vector<double> values;         ///< stored entries, row after row
  std::vector<std::int32_t> indices;  ///< column of each entry
  std::vector<std::int64_t> starts;   ///< position of each row's first entry, and the end of the last row

  /// A matrix without rows; all three arrays are empty.
  CSR() = default;

  /// A matrix of zeros with the given columns in each row.
  explicit CSR(const std::vector<std::vector<std::int32_t>>& J_Ii);

  /// The columns of each of the `nI` rows: for every element, all six unknowns of its two nodes are coupled. A node
  /// outside the project, an overflow and a number beyond 32 bits are fatal.
  [[nodiscard]] static std::vector<std::vector<std::int32_t>> CreateSparsityPattern(
      const std::vector<TrussElement>& trusses, const std::vector<BeamElement>& beams, std::int64_t nI);

  /// The entries of `array` that are greater than all before them and not negative; of a sorted array, its distinct
  /// values.
  [[nodiscard]] static std::vector<std::int32_t> DistinctAtOrdered(const std::vector<std::int32_t>& array);

  /// Sets every stored value to 0.
  void clear();

  /// Adds one element's stiffness to the matrix and takes its force from the residual.
  ///
  /// H_vv: n × n, row by row, of which only entries with a row number (in the global numbering) below the column
  /// number, and the diagonal, are read; F_v: n internal forces; I_v: n global numbers; R_I, D_I, vv_J: one entry per
  /// degree of freedom. A restrained unknown (D_I) gets its own diagonal but neither couplings nor force. vv_J is work
  /// space, zero before and after. Indices out of range are fatal.
  void makeAssembly(std::span<const double> H_vv, std::span<const double> F_v, std::span<const std::int64_t> I_v,
                    std::vector<double>& R_I, const std::vector<bool>& D_I, std::vector<std::int64_t>& vv_J);
};

}  // namespace gavrel
