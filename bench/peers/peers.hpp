// SPDX-License-Identifier: MIT
// One a file beside this one; each file is compiled only where its library is.
#pragma once

#include "../contestant.hpp"

namespace bench {

peer armadillo();
peer cxsparse();
peer eigen();
peer gfortran();
peer graphblas();
peer hypre();
peer librsb();
peer petsc();
peer scipy();
peer sparskit();

}  // namespace bench
