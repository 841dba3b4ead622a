// SPDX-License-Identifier: MIT
#include "shortage.hpp"

#include "../../src/support/memory.hpp"
#include "../support/observe.hpp"

#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr int never = std::numeric_limits<int>::max();

bool counting = false;
int requests = 0;
int first_refused = never;
int last_refused = never;

bool refused() noexcept {
  if (!counting) return false;
  const int request = requests++;
  return first_refused <= request && request <= last_refused;
}

csr_matrix_mod::stop_handler handler_before = nullptr;

}  // namespace

void* operator new(std::size_t bytes) {
  void* const block = refused() ? nullptr : std::malloc(bytes != 0 ? bytes : 1);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t /*bytes*/) noexcept { std::free(block); }

namespace tests {

namespace {

under_shortage observed_call(const std::function<void()>& call) {
  bool threw = false;
  const observed seen = observe([&] {
    handler_before = csr_matrix_mod::set_stop_handler([](std::string_view message) {
      counting = false;
      handler_before(message);
    });
    csr_matrix_mod::detail::set_refusal([](std::size_t) noexcept { return refused(); });
    requests = 0;
    counting = true;
    try {
      call();
    } catch (const std::bad_alloc&) {
      threw = true;
    } catch (...) {
      counting = false;
      csr_matrix_mod::detail::set_refusal(nullptr);
      throw;
    }
    counting = false;
    csr_matrix_mod::detail::set_refusal(nullptr);
  });
  return {requests > first_refused, threw, seen.stop, seen.output};
}

}  // namespace

under_shortage with_shortage(int k, duration how_long, const std::function<void()>& call) {
  first_refused = k;
  last_refused = how_long == duration::once ? k : never;
  return observed_call(call);
}

under_shortage without_shortage(const std::function<void()>& call) {
  first_refused = never;
  last_refused = never;
  return observed_call(call);
}

}  // namespace tests
