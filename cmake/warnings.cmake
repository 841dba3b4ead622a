# SPDX-License-Identifier: MIT
# The warnings that all of this tree is built with, errors only where asked for: a new compiler must
# not break somebody's build.
function(csr_matrix_mod_warnings target)
  target_compile_options(
    ${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow
                      $<$<BOOL:${CSR_MATRIX_MOD_WARNINGS_AS_ERRORS}>:-Werror>)
endfunction()
