! SPDX-License-Identifier: MIT
! Reads the first field of each line of a file and writes what it holds, one line each:
!   fields integer|value|truth IN OUT
! an integer in decimal, a value as 16 hexadecimal digits, a truth value as T or F, or "refused".
program fields
  implicit none
  character(len=1000) :: kind, input, output
  integer :: i, status
  double precision :: value
  logical :: truth

  call get_command_argument(1, kind)
  call get_command_argument(2, input)
  call get_command_argument(3, output)
  open (10, file=trim(input), status='old')
  open (11, file=trim(output), status='replace')
  do
    select case (kind)
    case ('integer')
      read (10, '(i10)', iostat=status) i
    case ('value')
      read (10, '(g20.8)', iostat=status) value
    case ('truth')
      read (10, *, iostat=status) truth
    end select
    if (status < 0) exit
    if (status > 0) then
      write (11, '(a)') 'refused'
    else
      select case (kind)
      case ('integer')
        write (11, '(i0)') i
      case ('value')
        write (11, '(z16.16)') transfer(value, 1_8)
      case ('truth')
        write (11, '(l1)') truth
      end select
    end if
  end do
end program fields
