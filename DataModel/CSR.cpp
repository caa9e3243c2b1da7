#include "DataModel/CSR.h"

#include <algorithm>

#include "Platform/Fatal.h"

namespace gavrel {

std::int64_t firstDof(std::int64_t node) {
  return checkedProduct(dofsPerNode, node, 0, "a node number is too large to number its degrees of freedom");
}

CSR::CSR(const std::vector<std::vector<std::int32_t>>& J_Ii) {
  std::size_t total = 0;
  for (const auto& columns : J_Ii) total += columns.size();
  indices.reserve(total);
  starts.reserve(J_Ii.size() + 1);
  starts.push_back(0);
  for (const auto& columns : J_Ii) {
    indices.insert(indices.end(), columns.begin(), columns.end());
    starts.push_back(static_cast<std::int64_t>(indices.size()));
  }
  values.resize(total);
}

void CSR::clear() {
  std::ranges::fill(values, 0.0);
}

void CSR::makeAssembly(std::span<const double> H_vv, std::span<const double> F_v, std::span<const std::int64_t> I_v,
                       std::vector<double>& R_I, const std::vector<bool>& D_I, std::vector<std::int64_t>& vv_J) {
  const auto n = std::ssize(I_v);
  for (std::int64_t a = 0; a < n; ++a) {
    const std::int64_t row = at(I_v, a, "I_v");
    std::int64_t pending = 0;  // marks in vv_J whose column has not been reached yet
    if (!at(D_I, row, "D_I")) {
      at(R_I, row, "R_I") -= at(F_v, a, "F_v");
      for (std::int64_t b = 0; b < n; ++b) {
        const std::int64_t column = at(I_v, b, "I_v");
        if (at(D_I, column, "D_I") || row >= column) continue;
        std::int64_t& mark = at(vv_J, column, "vv_J");
        if (mark == 0) ++pending;
        mark = a * n + b;
      }
    }
    const std::int64_t start = at(starts, row, "starts");
    const std::int64_t end = at(starts, row + 1, "starts");
    at(values, start, "values") += at(H_vv, a * n + a, "H_vv");
    for (std::int64_t k = start; k < end && pending > 0; ++k) {
      std::int64_t& position = at(vv_J, at(indices, k, "indices"), "vv_J");
      if (position < 1) continue;
      at(values, k, "values") += at(H_vv, position, "H_vv");
      position = 0;
      --pending;
    }
  }
}

}  // namespace gavrel
