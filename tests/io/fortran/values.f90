! SPDX-License-Identifier: MIT
! Writes values in the three forms that files and listings use:
!   values BITS LINES
! BITS holds 8 bytes a value, LINES gets three lines a value: g20.8, g12.4, list-directed.
program values
  implicit none
  integer(8) :: bits
  double precision :: value
  integer :: status
  character(len=1000) :: input, output

  call get_command_argument(1, input)
  call get_command_argument(2, output)
  open (10, file=trim(input), access='stream', form='unformatted', status='old')
  open (11, file=trim(output), status='replace')
  do
    read (10, iostat=status) bits
    if (status /= 0) exit
    value = transfer(bits, value)
    write (11, '(g20.8)') value
    write (11, '(g12.4)') value
    write (11, *) 'row ', 1, ' = ', value, value
  end do
end program values
