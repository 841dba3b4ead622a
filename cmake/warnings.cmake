# SPDX-License-Identifier: MIT
# What this tree asks of its compiler: C++20 and the vectors that GCC and Clang share.
if(NOT CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang"
   OR MSVC
   OR (CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 12)
   OR (CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 14))
  message(FATAL_ERROR "csr_matrix_mod needs GCC 12 or Clang 14, or a newer one; this is "
                      "${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}")
endif()

# The warnings that all of this tree is built with, errors only where asked for: a new compiler must
# not break somebody's build.
function(csr_matrix_mod_warnings target)
  target_compile_options(
    ${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wundef
                      $<$<BOOL:${CSR_MATRIX_MOD_WARNINGS_AS_ERRORS}>:-Werror>)
  # GCC 12 sees an overlap in "text" + std::string() where there is none (its bug 105651).
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
endfunction()

# Products are rounded before they are added, on every processor: the same matrices give the same
# bits everywhere.
function(csr_matrix_mod_no_contraction target)
  target_compile_options(${target} PRIVATE -ffp-contract=off)
endfunction()
