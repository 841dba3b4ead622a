! SPDX-License-Identifier: MIT
! Matrix files by the Fortran runtime: the transfers that define the layout, one a row.
module matrix_files
  use iso_c_binding
  implicit none
contains

  function text_of(name) result(text)
    character(kind=c_char), intent(in) :: name(*)
    character(len=:), allocatable :: text
    integer :: length, k
    length = 0
    do while (name(length + 1) /= c_null_char)
      length = length + 1
    end do
    allocate (character(len=length) :: text)
    do k = 1, length
      text(k:k) = name(k)
    end do
  end function

  subroutine fortran_write_text(name, n, m, ia, ja, a) bind(c)
    character(kind=c_char), intent(in) :: name(*)
    integer(c_int), value :: n, m
    integer(c_int), intent(in) :: ia(*), ja(*)
    real(c_double), intent(in) :: a(*)
    integer :: unit, i
    open (newunit=unit, file=text_of(name), form='formatted', status='replace')
    write (unit, *) .false.
    write (unit, '(3i10)') n, m
    do i = 1, n + 1
      write (unit, '(i10)') ia(i)
    end do
    do i = 1, n
      write (unit, '(i10)') ja(ia(i):ia(i + 1) - 1)
    end do
    do i = 1, n
      write (unit, '(g20.8)') a(ia(i):ia(i + 1) - 1)
    end do
    close (unit)
  end subroutine

  subroutine fortran_read_text(name, n, m, ia, ja, a) bind(c)
    character(kind=c_char), intent(in) :: name(*)
    integer(c_int), intent(out) :: n, m
    integer(c_int), intent(out) :: ia(*), ja(*)
    real(c_double), intent(out) :: a(*)
    integer :: unit, i
    logical :: structure_only
    open (newunit=unit, file=text_of(name), form='formatted', status='old')
    read (unit, *) structure_only
    read (unit, '(3i10)') n, m
    do i = 1, n + 1
      read (unit, '(i10)') ia(i)
    end do
    do i = 1, n
      read (unit, '(i10)') ja(ia(i):ia(i + 1) - 1)
    end do
    do i = 1, n
      read (unit, '(g20.8)') a(ia(i):ia(i + 1) - 1)
    end do
    close (unit)
  end subroutine

  subroutine fortran_write_binary(name, n, m, ia, ja, a) bind(c)
    character(kind=c_char), intent(in) :: name(*)
    integer(c_int), value :: n, m
    integer(c_int), intent(in) :: ia(*), ja(*)
    real(c_double), intent(in) :: a(*)
    integer :: unit
    open (newunit=unit, file=text_of(name), form='unformatted', status='replace')
    write (unit) .false.
    write (unit) n, m
    write (unit) ia(1:n + 1)
    write (unit) ja(1:ia(n + 1) - 1)
    write (unit) a(1:ia(n + 1) - 1)
    close (unit)
  end subroutine

  subroutine fortran_read_binary(name, n, m, ia, ja, a) bind(c)
    character(kind=c_char), intent(in) :: name(*)
    integer(c_int), intent(out) :: n, m
    integer(c_int), intent(out) :: ia(*), ja(*)
    real(c_double), intent(out) :: a(*)
    integer :: unit
    logical :: structure_only
    open (newunit=unit, file=text_of(name), form='unformatted', status='old')
    read (unit) structure_only
    read (unit) n, m
    read (unit) ia(1:n + 1)
    read (unit) ja(1:ia(n + 1) - 1)
    read (unit) a(1:ia(n + 1) - 1)
    close (unit)
  end subroutine

end module
