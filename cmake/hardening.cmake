# SPDX-License-Identifier: MIT
# For a program that reads files of strangers: a mistake that got past everything else is to end it,
# not to be made use of. Costs nothing that is measured in the tool; the library's kernels are built
# without, and who links them decides.
function(csr_matrix_mod_hardened target)
  target_compile_options(${target} PRIVATE -fstack-protector-strong)
  target_compile_definitions(${target} PRIVATE _GLIBCXX_ASSERTIONS)
  # The checks of the C library need an optimiser, and some compilers have set them already.
  target_compile_options(
    ${target} PRIVATE "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    target_link_options(${target} PRIVATE LINKER:-z,relro,-z,now,-z,noexecstack)
  endif()
endfunction()
