#include "Benchmarks/Floor.h"

#include <cblas.h>
#include <cholmod.h>

#include <stdexcept>
#include <thread>

#include "Benchmarks/Stopwatch.h"

namespace gavrel {

namespace {

constexpr std::int64_t translations = 3;

struct Triangle {
  std::vector<std::int64_t> starts{0};
  std::vector<std::int64_t> rows;
  std::vector<double> values;
};

Triangle extractTranslations(const CSR& H_II) {
  Triangle triangle;
  for (std::int64_t r = 0; r + 1 < std::ssize(H_II.starts); ++r) {
    if (r % dofsPerNode >= translations) continue;
    for (auto k = H_II.starts[static_cast<std::size_t>(r)]; k < H_II.starts[static_cast<std::size_t>(r + 1)]; ++k) {
      const std::int64_t c = H_II.indices[static_cast<std::size_t>(k)];
      if (c % dofsPerNode >= translations) continue;
      triangle.rows.push_back(c / dofsPerNode * translations + c % dofsPerNode);
      triangle.values.push_back(H_II.values[static_cast<std::size_t>(k)]);
    }
    triangle.starts.push_back(std::ssize(triangle.rows));
  }
  return triangle;
}

}  // namespace

Floor Floor::measure(const CSR& H_II) {
  Triangle triangle = extractTranslations(H_II);
  // Our own factorizations have left OpenBLAS with one.
  openblas_set_num_threads(static_cast<int>(std::thread::hardware_concurrency()));
  cholmod_common common;
  cholmod_l_start(&common);
  common.supernodal = CHOLMOD_SUPERNODAL;
  common.nmethods = 1;
  common.method[0].ordering = CHOLMOD_METIS;

  cholmod_sparse matrix{};
  matrix.nrow = matrix.ncol = triangle.starts.size() - 1;
  matrix.nzmax = triangle.rows.size();
  matrix.p = triangle.starts.data();
  matrix.i = triangle.rows.data();
  matrix.x = triangle.values.data();
  matrix.stype = -1;
  matrix.itype = CHOLMOD_LONG;
  matrix.xtype = CHOLMOD_REAL;
  matrix.dtype = CHOLMOD_DOUBLE;
  matrix.sorted = 1;
  matrix.packed = 1;
  cholmod_dense* b = cholmod_l_ones(matrix.nrow, 1, CHOLMOD_REAL, &common);

  Floor floor;
  Stopwatch watch;
  cholmod_factor* factor = cholmod_l_analyze(&matrix, &common);
  floor.analysis = watch.lap();
  cholmod_l_factorize(&matrix, factor, &common);
  floor.factorization = watch.lap();
  const bool positiveDefinite = common.status == CHOLMOD_OK;
  cholmod_dense* x = cholmod_l_solve(CHOLMOD_A, factor, b, &common);
  floor.solve = watch.lap();

  cholmod_l_free_dense(&x, &common);
  cholmod_l_free_dense(&b, &common);
  cholmod_l_free_factor(&factor, &common);
  cholmod_l_finish(&common);
  if (!positiveDefinite) throw std::runtime_error("CHOLMOD did not factorize the lattice");
  return floor;
}

}  // namespace gavrel
