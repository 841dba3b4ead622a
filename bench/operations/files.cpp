// SPDX-License-Identifier: MIT
#include "../operation.hpp"
#include "../ours.hpp"
#include "../plain.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <fstream>
#include <stdexcept>

namespace bench {

namespace {

std::vector<workload> workloads(double goal) {
  return {on("5-point", five_point_rows(), 1e6, goal), on("random", random_rows(), 3e5, goal)};
}

array<char> bytes_of(const std::string& file) {
  std::ifstream in(file, std::ios::binary | std::ios::ate);
  array<char> bytes(static_cast<std::size_t>(in.tellg()));
  in.seekg(0);
  in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return bytes;
}

answer file_answer(const std::string& file) {
  answer found;
  found.bytes = bytes_of(file);
  return found;
}

struct nothing {};

// Writes `p.a` to the contestant's own file.
template <class Write>
auto writes(const problem& p, Write write) {
  return makes(
      [write = std::move(write)] {
        write();
        return nothing{};
      },
      [&p](nothing) { return file_answer(p.file); });
}

// Room for the entries of a file, as its reader wants it.
matrix room_for(const matrix& a) {
  matrix room;
  room.starts.resize(a.starts.size());
  room.columns.resize(a.columns.size());
  room.values.resize(a.values.size());
  return room;
}

ours::csr_matrix record_for(const matrix& a) {
  ours::csr_matrix room;
  csr_matrix_mod::csr_matrix_initial(a.n, room, a.m);
  csr_matrix_mod::csr_matrix_allocate(room, a.nnz());
  return room;
}

void write_plainly(const problem& p, bool text) {
  if (text)
    plain::write_text(p.a, p.file);
  else
    plain::write_binary(p.a, p.file);
}

operation writing(std::string name, std::string formula, double goal, bool text) {
  operation of;
  of.name = std::move(name);
  of.formula = std::move(formula);
  of.workloads = workloads(goal);
  of.plain = [text](const problem& p) { return writes(p, [&p, text] { write_plainly(p, text); }); };
  of.ours = [text](const problem& p) {
    return writes(p, [&p, text, a = ours::record(p.a)] {
      if (text)
        csr_matrix_mod::csr_matrix_dump(p.file, a);
      else
        csr_matrix_mod::csr_matrix_dump(p.file, a, "unformatted");
    });
  };
  return of;
}

operation reading(std::string name, std::string formula, double goal, bool text) {
  operation of;
  of.name = std::move(name);
  of.formula = std::move(formula);
  of.workloads = workloads(goal);
  of.plain = [text](const problem& p) {
    write_plainly(p, text);
    return changes([&p] { return room_for(p.a); },
                   [&p, text](matrix& a) {
                     if (text)
                       plain::read_text(a, p.file);
                     else
                       plain::read_binary(a, p.file);
                   },
                   matrix_answer);
  };
  of.ours = [text](const problem& p) {
    write_plainly(p, text);
    return changes([&p] { return record_for(p.a); },
                   [&p, text](ours::csr_matrix& a) {
                     const std::int32_t unit = csr_matrix_mod::vacant_unit();
                     if (text)
                       csr_matrix_mod::csr_matrix_read(p.file, a);
                     else
                       csr_matrix_mod::csr_matrix_read(p.file, a, "unformatted");
                     csr_matrix_mod::close_unit(unit);
                   },
                   [](const ours::csr_matrix& a) { return matrix_answer(ours::arrays(a)); });
  };
  return of;
}

// The same bytes, formed before, handed to the system at once.
void write_at_once(const std::string& file, const array<char>& bytes) {
  const int to = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t written = ::write(to, bytes.data() + done, bytes.size() - done);
    if (written <= 0) throw std::runtime_error("cannot write " + file);
    done += static_cast<std::size_t>(written);
  }
  ::close(to);
}

}  // namespace

operation write_text() { return writing("write text", "text file", 17, true); }
operation read_text() { return reading("read text", "text file", 15, true); }
operation write_binary() {
  operation of = writing("write binary", "binary file", 1, false);
  of.references = {{"one write()", [](const problem& p) {
                      write_plainly(p, false);
                      return makes(
                          [&p, bytes = bytes_of(p.file)] {
                            write_at_once(p.file, bytes);
                            return nothing{};
                          },
                          [](nothing) { return answer{}; });
                    }}};
  return of;
}
operation read_binary() { return reading("read binary", "binary file", 2.4, false); }

}  // namespace bench
