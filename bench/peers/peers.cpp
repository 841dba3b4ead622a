// SPDX-License-Identifier: MIT
#include "peers.hpp"

namespace bench {

const std::vector<peer>& peers() {
  static const std::vector<peer> all = {
#ifdef BENCH_ARMADILLO
      armadillo(),
#endif
#ifdef BENCH_CXSPARSE
      cxsparse(),
#endif
#ifdef BENCH_EIGEN
      eigen(),
#endif
#ifdef BENCH_GFORTRAN
      gfortran(),
#endif
#ifdef BENCH_GRAPHBLAS
      graphblas(),
#endif
#ifdef BENCH_HYPRE
      hypre(),
#endif
#ifdef BENCH_LIBRSB
      librsb(),
#endif
#ifdef BENCH_PETSC
      petsc(),
#endif
#ifdef BENCH_SCIPY
      scipy(),
#endif
#ifdef BENCH_SPARSKIT
      sparskit(),
#endif
  };
  return all;
}

}  // namespace bench
