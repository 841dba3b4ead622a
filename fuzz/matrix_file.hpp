// SPDX-License-Identifier: MIT
// What is claimed of the readers of matrix files, text and binary alike.
#pragma once

#include "../src/io/stream.hpp"
#include "claims.hpp"
#include "scratch_file.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace fuzz {

using form_word = std::optional<std::string_view>;

// Nobody has left a file open, and nothing that follows will.
inline void claim_no_unit_taken() {
  claim(csr_matrix_mod::vacant_unit() == 10, "a reader that stops takes no unit");
}

// Records that the lenient reader fills, with room for so many row starts and entries.
inline csr_matrix record_with_room(std::int64_t starts, std::int64_t entries) {
  csr_matrix mat;
  if (!mat.ia.allocate(starts) || !mat.ja.allocate(entries) || !mat.a.allocate(entries))
    std::abort();
  return mat;
}

class matrix_file_target {
 public:
  matrix_file_target(form_word form, std::string_view name)
      : form_(form),
        input_(folder_.path(std::string(name))),
        output_(folder_.path(std::string(name) + ".written")) {
    prepare_library();
  }

  void run(bytes contents) {
    input_.fill(contents);
    csr_matrix mat;
    const std::optional<std::string> stop = load(input_, mat, granted_buffer);
    if (stop)
      claim_clear(*stop);
    else
      claim_well_formed(mat, "what is loaded is well formed");

    // What is dear is done for half of the inputs each, or for some of those refused.
    const std::size_t turn = contents.size() % (stop ? 8 : 2);
    if (turn == 0) cross_seams(contents.size(), mat, stop);
    if (stop) {
      read_into(record_with_room(6, 9), {});
    } else {
      read_into(record_with_room(std::int64_t{mat.n} + 1, csr_matrix_num_nz(mat)), &mat);
      if (turn == 1) write_and_load(mat);
    }
    claim_no_unit_taken();
  }

 private:
  std::optional<std::string> load(const scratch_file& file, csr_matrix& mat, std::size_t buffer) {
    csr_matrix_mod::set_buffer_size(buffer);
    auto stop = stop_of([&] { csr_matrix_load(file.path(), mat, form_); });
    csr_matrix_mod::set_buffer_size(granted_buffer);
    return stop;
  }

  // Fields across the seams of a small buffer are read in another way.
  void cross_seams(std::size_t any, const csr_matrix& mat, const std::optional<std::string>& stop) {
    csr_matrix other;
    claim(load(input_, other, 7 + any % 41) == stop, "the size of a buffer plays no part",
          stop.value_or("accepted"));
    claim(stop || same_bits(mat, other), "the size of a buffer changes no bit");
  }

  // The lenient reader takes all that the strict one takes, and never goes beyond its storage.
  void read_into(csr_matrix mat, const csr_matrix* loaded) {
    const std::int32_t unit = csr_matrix_mod::vacant_unit();
    const auto stop = stop_of([&] { csr_matrix_read(input_.path(), mat, form_); });
    csr_matrix_mod::close_unit(unit);
    if (stop) claim_clear(*stop);
    if (loaded == nullptr) return;
    claim(!stop, "what is loaded can be read", stop.value_or(""));
    claim(same_bits(mat, *loaded), "both readers read the same bits");
  }

  // The text form keeps 8 digits, so its second writing is held against its first.
  void write_and_load(const csr_matrix& mat) {
    csr_matrix again;
    const std::string first = written(mat);
    const auto stop = load(output_, again, granted_buffer);
    claim(!stop, "what was written can be loaded", stop.value_or(""));
    if (form_) claim(same_bits(mat, again), "what was written is loaded with the same bits");
    claim(written(again) == first, "what was loaded is written with the same bytes", first);
  }

  std::string written(const csr_matrix& mat) {
    const std::int32_t unit = csr_matrix_mod::vacant_unit();
    csr_matrix_dump(output_.path(), mat, form_);
    csr_matrix_mod::close_unit(unit);
    return output_.contents();
  }

  form_word form_;
  scratch_folder folder_;
  scratch_file input_;
  scratch_file output_;
};

}  // namespace fuzz
