# SPDX-License-Identifier: MIT
# The library needs nothing. What its tool and its tests need comes from the system; where it is
# missing, one line says what to install and how to do without.
#
#   csr_matrix_mod_require(GTest_FOUND libgtest-dev CSR_MATRIX_MOD_BUILD_TESTS)
function(csr_matrix_mod_require found package option)
  if(NOT ${found})
    message(FATAL_ERROR "${package} is missing. Install it (apt-get install ${package}), "
                        "or do without that part: -D${option}=OFF.")
  endif()
endfunction()
