// SPDX-License-Identifier: MIT
// Any bytes as a Matrix Market file.
#include "../src/io/stream.hpp"
#include "claims.hpp"
#include "scratch_file.hpp"
#include "target.hpp"

namespace fuzz {

namespace {

class market_target {
 public:
  market_target() { prepare_library(); }

  void run(bytes contents) {
    input_.fill(contents);
    csr_matrix mat;
    const auto stop = load(input_, mat, granted_buffer);
    if (stop) claim_clear(*stop);
    if (!stop || contents.size() % 8 == 0) {
      csr_matrix other;
      claim(load(input_, other, 7 + contents.size() % 41) == stop,
            "the size of a buffer plays no part", stop.value_or("accepted"));
      claim(stop || same_bits(mat, other), "the size of a buffer changes no bit");
    }
    if (stop) return;
    claim_well_formed(mat, "what is read is well formed");
    csr_matrix_write_market(output_.path(), mat);
    csr_matrix again;
    const auto refusal = load(output_, again, granted_buffer);
    claim(!refusal, "what was written can be read", refusal.value_or(""));
    claim(same_bits(mat, again), "what was written is read with the same bits");
  }

 private:
  static std::optional<std::string> load(const scratch_file& file, csr_matrix& mat,
                                         std::size_t buffer) {
    csr_matrix_mod::set_buffer_size(buffer);
    auto stop = stop_of([&] { csr_matrix_read_market(file.path(), mat); });
    csr_matrix_mod::set_buffer_size(granted_buffer);
    return stop;
  }

  scratch_folder folder_;
  scratch_file input_{folder_.path("market")};
  scratch_file output_{folder_.path("market.written")};
};

}  // namespace

void run(bytes contents) {
  static market_target target;
  target.run(contents);
}

}  // namespace fuzz
