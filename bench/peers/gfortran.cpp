// SPDX-License-Identifier: MIT
// The Fortran runtime, for files.
#include "../plain.hpp"
#include "peers.hpp"

#include <fstream>
#include <iterator>

extern "C" {
using fortran_writer = void(const char* name, int n, int m, const int* ia, const int* ja,
                            const double* a);
using fortran_reader = void(const char* name, int* n, int* m, int* ia, int* ja, double* a);
fortran_writer fortran_write_text;
fortran_writer fortran_write_binary;
fortran_reader fortran_read_text;
fortran_reader fortran_read_binary;
}

namespace bench {

namespace {

struct nothing {};

maker writes(fortran_writer* write) {
  return [write](const problem& p) {
    return makes(
        [&p, write] {
          write(p.file.c_str(), p.a.n, p.a.m, p.a.starts.data(), p.a.columns.data(),
                p.a.values.data());
          return nothing{};
        },
        [&p](nothing) {
          std::ifstream in(p.file, std::ios::binary);
          answer found;
          found.bytes.assign(std::istreambuf_iterator<char>(in), {});
          return found;
        });
  };
}

maker reads(fortran_reader* read, void (*write)(const matrix&, const std::string&)) {
  return [read, write](const problem& p) {
    write(p.a, p.file);
    return changes(
        [&p] {
          matrix room;
          room.starts.resize(p.a.starts.size());
          room.columns.resize(p.a.columns.size());
          room.values.resize(p.a.values.size());
          return room;
        },
        [&p, read](matrix& a) {
          read(p.file.c_str(), &a.n, &a.m, a.starts.data(), a.columns.data(), a.values.data());
        },
        matrix_answer);
  };
}

}  // namespace

peer gfortran() {
  return {"gfortran",
          {{"write text", writes(fortran_write_text)},
           {"read text", reads(fortran_read_text, plain::write_text)},
           {"write binary", writes(fortran_write_binary)},
           {"read binary", reads(fortran_read_binary, plain::write_binary)}}};
}

}  // namespace bench
