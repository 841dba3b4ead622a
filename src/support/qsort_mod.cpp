// SPDX-License-Identifier: MIT
#include <csr_matrix_mod/support.hpp>

#include <algorithm>
#include <numeric>

namespace csr_matrix_mod {

namespace {

// Moves keys[perm[k]] to place k, for every k, following the cycles of `perm`. A position that is
// done is marked by its complement, which no position is, so that nothing need be allocated.
void apply_permutation(std::int32_t* keys, std::int32_t* perm, std::int32_t length) {
  for (std::int32_t first = 0; first < length; ++first) {
    if (perm[first] < 0) continue;
    const std::int32_t first_key = keys[first];
    std::int32_t k = first;
    while (perm[k] != first) {
      const std::int32_t from = perm[k];
      keys[k] = keys[from];
      perm[k] = ~from;
      k = from;
    }
    keys[k] = first_key;
    perm[k] = ~first;
  }
}

}  // namespace

void quicksort(array_view<std::int32_t> keys, array_view<std::int32_t> perm) {
  std::int32_t* const key = keys.data();
  std::int32_t* const position = perm.data();
  const auto length = static_cast<std::int32_t>(keys.length());

  std::iota(position, position + length, 0);
  std::sort(position, position + length, [key](std::int32_t left, std::int32_t right) {
    return key[left] != key[right] ? key[left] < key[right] : left < right;
  });
  apply_permutation(key, position, length);
  std::transform(position, position + length, position,
                 [](std::int32_t done) { return ~done + 1; });
}

}  // namespace csr_matrix_mod
