// SPDX-License-Identifier: MIT
#include "memory.hpp"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>

#if defined(__GLIBC__)
#include <malloc.h>
#endif
#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace csr_matrix_mod::detail {

namespace {

std::atomic<refusal> current_refusal{nullptr};

bool refused(std::size_t bytes) noexcept {
  const refusal refuse = current_refusal.load(std::memory_order_relaxed);
  return refuse != nullptr && refuse(bytes);
}

// A request for nothing is storage too, so it must not come back null.
std::size_t at_least_one(std::size_t bytes) noexcept { return std::max<std::size_t>(bytes, 1); }

// Filling fresh memory is what a product waits for most, page by page: with pages of 2 MiB the
// square of a 5-point matrix with a million rows takes half the time (67 instead of 128 ms). The
// system is asked for them inside large blocks, and whatever it answers the block is good.
constexpr std::size_t huge_page = std::size_t{2} << 20;

// What is asked for in such pages, of a block that begins with one: those that it fills, the last
// one to seven eighths. So the four million bytes of a million row starts are two pages, and are
// filled in 0.1 ms; one page, and the rest in small ones, took 0.8, small ones alone 1.6.
std::size_t in_huge_pages(std::size_t bytes) noexcept {
  return (bytes + huge_page / 8) / huge_page * huge_page;
}

void ask_for_huge_pages(void* block, std::size_t bytes) noexcept {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
  (void)::madvise(block, bytes, MADV_HUGEPAGE);
#else
  (void)block;
  (void)bytes;
#endif
}

// Those inside a block that begins anywhere.
void* with_huge_pages(void* block, std::size_t bytes) noexcept {
  if (block == nullptr || bytes < 2 * huge_page) return block;
  const auto address = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t first = (address + huge_page - 1) / huge_page * huge_page;
  const std::uintptr_t end = (address + bytes) / huge_page * huge_page;
  ask_for_huge_pages(static_cast<char*>(block) + (first - address), end - first);
  return block;
}

// Has glibc mapped pages for this block alone? Its header is of another size then.
bool is_mapped(void* block) noexcept {
#if defined(__GLIBC__)
  return block != nullptr && ::malloc_usable_size(block) % (2 * sizeof(std::size_t)) == 0;
#else
  (void)block;
  return false;
#endif
}

// A block that begins with a large page, instead of one on fresh pages that begins anywhere: a
// binary file of 64 MB is read in 12.1 instead of 14.9 ms, one of 30 MB in 6.0 instead of 7.6. Null
// where there is none. Blocks of the heap stay what they are: few of their pages are fresh, and
// where blocks have to begin with large pages a block that comes back is no room for the next one
// of its size, so that the heap of a program that forms the same product again would grow forever.
void* on_huge_pages(std::size_t bytes) noexcept {
  void* block = nullptr;
#if defined(__linux__) && defined(MADV_HUGEPAGE)
  const std::size_t huge = in_huge_pages(bytes);
  if (::posix_memalign(&block, huge_page, std::max(bytes, huge)) != 0) return nullptr;
  ask_for_huge_pages(block, huge);
#else
  (void)bytes;
#endif
  return block;
}

// glibc maps pages for what is larger than the largest block of this kind that it has got back, 32
// MiB at most, and unmaps them when they come back; smaller requests it serves from its heap, of
// which it keeps twice as much. A block that is cut off before it is given back does not teach it
// the size that will be asked for again. So it is shown a larger one, which nobody touches. A A
// again and again, of 5-point matrices of 1000, 10 000 and 100 000 rows: 4, 5 and 1.4 times as
// fast; where a program has fixed the sizes, 1000 rows take up to a tenth longer.
void show_size_before_cut(void* block, std::size_t bytes) noexcept {
#if defined(__GLIBC__)
  constexpr std::size_t most_learnt = (std::size_t{32} << 20) - (std::size_t{64} << 10);
  if (!is_mapped(block)) return;
  const std::size_t usable = ::malloc_usable_size(block);
  if (usable <= bytes || usable >= most_learnt) return;
  void* volatile shown = std::malloc(std::min(2 * usable, most_learnt));  // volatile: not left out
  std::free(shown);
#else
  (void)block;
  (void)bytes;
#endif
}

// Is a block of many pages at most a page larger? Cut off, so little would be kept for small
// requests, and the next block of the size before would not find room where this one was: the heap
// of a program that forms the same product again grew with each of the first calls, and each of
// them waited for fresh pages, for twice its time.
bool fits_closely(void* block, std::size_t bytes) noexcept {
#if defined(__GLIBC__)
  constexpr std::size_t page = 4096;
  if (block == nullptr || bytes < 16 * page) return false;
  const std::size_t usable = ::malloc_usable_size(block);
  return usable >= bytes && usable - bytes <= page;
#else
  (void)block;
  (void)bytes;
  return false;
#endif
}

}  // namespace

void* obtain(std::size_t bytes) noexcept {
  if (refused(bytes)) return nullptr;
  void* block = std::malloc(at_least_one(bytes));
  if (in_huge_pages(bytes) == 0 || !is_mapped(block)) return with_huge_pages(block, bytes);
  std::free(block);
  block = on_huge_pages(bytes);
  return block != nullptr ? block : std::malloc(bytes);
}

// Zeros that the system hands out cost nothing until they are touched, and the marker of a sum or
// product of stencils hardly is: no pages are asked for that would be filled as a whole.
void* obtain_zeroed(std::size_t bytes) noexcept {
  return refused(bytes) ? nullptr : with_huge_pages(std::calloc(at_least_one(bytes), 1), bytes);
}

void* resize_block(void* block, std::size_t bytes) noexcept {
  if (refused(bytes)) return nullptr;
  if (fits_closely(block, bytes)) return block;
  show_size_before_cut(block, bytes);
  return with_huge_pages(std::realloc(block, at_least_one(bytes)), bytes);
}

bool maps_pages_for(std::size_t bytes) noexcept {
  void* const block = std::malloc(bytes);
  const bool mapped = is_mapped(block);
  std::free(block);
  return mapped;
}

void give_back(void* block) noexcept { std::free(block); }

void set_refusal(refusal refuse) noexcept { current_refusal.store(refuse); }

}  // namespace csr_matrix_mod::detail
