# SPDX-License-Identifier: MIT
# What this tree asks of its compiler. Only GCC and Clang are told: others use their own words.
set(csr_matrix_mod_known_compiler OFF)
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang" AND NOT MSVC)
  set(csr_matrix_mod_known_compiler ON)
endif()

# The warnings that all of this tree is built with, errors only where asked for: a new compiler must
# not break somebody's build.
function(csr_matrix_mod_warnings target)
  if(csr_matrix_mod_known_compiler)
    target_compile_options(
      ${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wundef
                        $<$<BOOL:${CSR_MATRIX_MOD_WARNINGS_AS_ERRORS}>:-Werror>)
  endif()
  # GCC 12 sees an overlap in "text" + std::string() where there is none (its bug 105651).
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
endfunction()

# Products are rounded before they are added, on every processor: the same matrices give the same
# bits everywhere.
function(csr_matrix_mod_no_contraction target)
  if(csr_matrix_mod_known_compiler)
    target_compile_options(${target} PRIVATE -ffp-contract=off)
  endif()
endfunction()
