! SPDX-License-Identifier: MIT
! matrix_file, to be compiled so that long records are split early.
include 'matrix_file.f90'
