! SPDX-License-Identifier: MIT
! Reads a matrix file and writes the matrix in a layout, as a Fortran program does it:
!   matrix_file IN text|unformatted OUT LAYOUT
program matrix_file
  implicit none
  logical(4) :: pattern
  integer :: n, m, i, j, k
  integer, allocatable :: ia(:), ja(:)
  double precision, allocatable :: a(:)
  character(len=1000) :: input, form, output, layout
  character(len=80) :: fmt

  call get_command_argument(1, input)
  call get_command_argument(2, form)
  call get_command_argument(3, output)
  call get_command_argument(4, layout)
  call read_matrix
  if (layout == 'unformatted') then
    open (11, file=trim(output), form='unformatted', status='replace')
  else
    open (11, file=trim(output), form='formatted', status='replace')
  end if
  call write_matrix
  close (11)

contains

  subroutine read_matrix
    if (form == 'unformatted') then
      open (10, file=trim(input), form='unformatted', status='old')
      read (10) pattern
      read (10) n, m
      allocate (ia(n + 1))
      read (10) ia
      allocate (ja(ia(n + 1) - 1), a(ia(n + 1) - 1))
      read (10) ja
      if (.not. pattern) read (10) a
    else
      open (10, file=trim(input), form='formatted', status='old')
      read (10, *) pattern
      read (10, '(3i10)') n, m
      allocate (ia(n + 1))
      do i = 1, n + 1
        read (10, '(i10)') ia(i)
      end do
      allocate (ja(ia(n + 1) - 1), a(ia(n + 1) - 1))
      do i = 1, n
        read (10, '(i10)') (ja(k), k=ia(i), ia(i + 1) - 1)
      end do
      if (.not. pattern) then
        do i = 1, n
          read (10, '(g20.8)') (a(k), k=ia(i), ia(i + 1) - 1)
        end do
      end if
    end if
    close (10)
  end subroutine read_matrix

  subroutine write_matrix
    select case (layout)
    case ('unformatted')
      write (11) pattern
      write (11) n, m
      write (11) ia
      write (11) ja
      if (.not. pattern) write (11) a
    case ('text')
      write (11, *) pattern
      write (11, '(3i10)') n, m
      do i = 1, n + 1
        write (11, '(i10)') ia(i)
      end do
      do i = 1, n
        write (11, '(i10)') (ja(k), k=ia(i), ia(i + 1) - 1)
      end do
      if (.not. pattern) then
        do i = 1, n
          write (11, '(g20.8)') (a(k), k=ia(i), ia(i + 1) - 1)
        end do
      end if
    case ('dump')
      do i = 1, n
        write (11, *) 'row ', i, ' = ', (ja(k), k=ia(i), ia(i + 1) - 1)
      end do
      if (.not. pattern) then
        do i = 1, n
          write (11, *) 'row ', i, ' = ', (a(k), k=ia(i), ia(i + 1) - 1)
        end do
      end if
    case ('ij')
      do i = 1, n
        write (11, '(2i10)') (i, ja(k), k=ia(i), ia(i + 1) - 1)
      end do
    case ('ija')
      do i = 1, n
        if (pattern) then
          write (11, '(2i10)') (i, ja(k), k=ia(i), ia(i + 1) - 1)
        else
          write (11, '(2i10,g12.4)') (i, ja(k), a(k), k=ia(i), ia(i + 1) - 1)
        end if
      end do
    case ('gnuplot')
      do i = 1, n
        write (11, '(2i10)') (ja(k), n + 1 - i, k=ia(i), ia(i + 1) - 1)
      end do
    case ('commands')
      write (11, '(a,i12,a)') 'set xrange [0:', m + 1, ']'
      write (11, '(a,i12,a)') 'set yrange [0:', n + 1, ']'
      write (11, '(a,i12,a,i12,a)') 'set ytics ("1" ', n, ', "', n, '"  1 )'
      write (11, '(a)') 'set noxtics'
      write (fmt, '(a,i0,a)') '(a,a,i', len_trim(digits_of(m)), ',a,i12,a)'
      write (11, fmt) 'set x2tics ("1" ', '1, "', m, '" ', m, ' )'
      write (11, '(a)') 'set nolabel '
      write (11, '(a)') 'set term post portrait '
      write (11, '(a,a)') 'set out "', 'plot.ps"'
      write (11, '(a)') 'set size  square'
      write (11, '(a,a,a)') 'plot "', 'plot', '" using 1:2 notitle w p ps 0.3'
    case ('hypergraph')
      write (11, '(2i12)') m, n
      do j = 1, m
        call write_edge(j)
      end do
    end select
  end subroutine write_matrix

  ! The rows that hold column j, as often as they hold it.
  subroutine write_edge(j)
    integer, intent(in) :: j
    integer :: rows(size(ja)), count
    count = 0
    do i = 1, n
      do k = ia(i), ia(i + 1) - 1
        if (ja(k) == j) then
          count = count + 1
          rows(count) = i
        end if
      end do
    end do
    if (count == 0) then
      write (11, '(a)') ''
    else
      write (fmt, "('(',i12,'i8)')") count
      write (11, fmt) rows(1:count)
    end if
  end subroutine write_edge

  function digits_of(value) result(text)
    integer, intent(in) :: value
    character(len=12) :: text
    write (text, '(i0)') value
  end function digits_of

end program matrix_file
