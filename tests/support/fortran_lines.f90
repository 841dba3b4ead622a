! SPDX-License-Identifier: MIT
! The lines of free_layout_test.cpp, item by item, as list-directed output renders them.
program fortran_lines
  implicit none
  print *, 'text'
  print *, 'two ', 'texts'
  print *, ''
  print *, 0
  print *, 7, -7
  print *, huge(0), -huge(0)-1
  print *, 'text ', 12, ' text'
  print *, 12, 'text', 'text', 34
  print *, .true.
  print *, .false., .true.
  print *, 'text', .true., 'text'
  print *, 1, .false., 1
  print *, '', 1, ''
end program fortran_lines
