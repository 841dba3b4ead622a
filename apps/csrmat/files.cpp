// SPDX-License-Identifier: MIT
#include "files.hpp"

#include "failure.hpp"
#include "limits.hpp"
#include "replacement.hpp"

#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>
#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>

namespace csrmat {

using namespace csr_matrix_mod;
using namespace std::string_view_literals;

namespace {

std::optional<file_kind> kind_of_suffix(const std::string& path) {
  static const std::map<std::string, file_kind> suffixes = {
      {".mtx", file_kind::market},    {".csr", file_kind::text}, {".csrb", file_kind::binary},
      {".dump", file_kind::dump},     {".ij", file_kind::ij},    {".ija", file_kind::ija},
      {".hgr", file_kind::hypergraph}};
  const auto found = suffixes.find(std::filesystem::path(path).extension().string());
  if (found == suffixes.end()) return {};
  return found->second;
}

bool is_readable(file_kind kind) {
  return kind == file_kind::text || kind == file_kind::binary || kind == file_kind::market;
}

class open_file {
 public:
  explicit open_file(const std::string& path)
      : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
  open_file(const open_file&) = delete;
  open_file& operator=(const open_file&) = delete;
  ~open_file() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  [[nodiscard]] int descriptor() const { return descriptor_; }

 private:
  int descriptor_;
};

// A binary file begins with a record of four bytes, whose length comes first, in the byte order of
// the machine that wrote it. What another one wrote is for the reader to refuse.
file_kind kind_of_contents(const std::string& path) {
  const open_file file(path);
  std::array<char, 14> bytes{};
  const ssize_t got = read(file.descriptor(), bytes.data(), bytes.size());
  const std::string_view start(bytes.data(), static_cast<std::size_t>(got < 0 ? 0 : got));
  const std::string_view length = start.substr(0, 4);
  if (strncasecmp(bytes.data(), "%%MatrixMarket", bytes.size()) == 0) return file_kind::market;
  if (length == "\4\0\0\0"sv || length == "\0\0\0\4"sv) return file_kind::binary;
  return file_kind::text;
}

file_kind input_kind(const std::string& path) {
  const std::optional<file_kind> kind = kind_of_suffix(path);
  if (!kind) return kind_of_contents(path);
  if (!is_readable(*kind)) throw failure(path + ": listings are written only, not read");
  return *kind;
}

// The format word of the library; none for its text encoding.
std::optional<std::string_view> format_word(file_kind kind) {
  switch (kind) {
    case file_kind::binary:
      return "unformatted";
    case file_kind::dump:
      return "dump";
    case file_kind::ij:
      return "ij";
    case file_kind::ija:
      return "ija";
    case file_kind::hypergraph:
      return "hypergraph";
    case file_kind::text:
    case file_kind::market:
      break;
  }
  return {};
}

// Some dumps leave their unit open, but the file is to be complete before it gets its name.
void dump_and_close(const std::string& path, file_kind kind, const csr_matrix& mat) {
  const std::int32_t unit = vacant_unit();
  csr_matrix_dump(path, mat, format_word(kind));
  close_unit(unit);
}

}  // namespace

const std::map<std::string, file_kind>& readable_kinds() {
  static const std::map<std::string, file_kind> kinds = {
      {"text", file_kind::text}, {"binary", file_kind::binary}, {"market", file_kind::market}};
  return kinds;
}

const std::map<std::string, file_kind>& writable_kinds() {
  static const std::map<std::string, file_kind> kinds = {{"text", file_kind::text},
                                                         {"binary", file_kind::binary},
                                                         {"market", file_kind::market},
                                                         {"dump", file_kind::dump},
                                                         {"ij", file_kind::ij},
                                                         {"ija", file_kind::ija},
                                                         {"hypergraph", file_kind::hypergraph}};
  return kinds;
}

std::string with_name_asked(std::string text, const std::string& written,
                            const std::string& asked) {
  for (std::size_t at = 0; (at = text.find(written, at)) != text.npos; at += asked.size())
    text.replace(at, written.size(), asked);
  return text;
}

void require_file(const std::string& path) {
  const open_file file(path);
  struct stat status {};
  if (file.descriptor() < 0 || fstat(file.descriptor(), &status) != 0)
    throw failure(path + ": cannot be read: " + std::strerror(errno));
  if (!S_ISREG(status.st_mode)) throw failure(path + ": cannot be read: not a regular file");
}

csr_matrix read_matrix(const std::string& path, std::optional<file_kind> from) {
  require_file(path);
  const file_kind kind = from ? *from : input_kind(path);
  csr_matrix mat;
  if (kind == file_kind::market)
    csr_matrix_read_market(path, mat);
  else
    csr_matrix_load(path, mat, format_word(kind));
  if (const auto defect = csr_matrix_check(mat)) throw failure(path + ": " + *defect);
  return mat;
}

file_kind output_kind(const std::string& path, std::optional<file_kind> to) {
  const std::optional<file_kind> kind = to ? to : kind_of_suffix(path);
  if (!kind)
    throw failure(path +
                  ": no kind of file known by this suffix: use .mtx (Matrix Market), .csr (text), "
                  ".csrb (binary), .dump, .ij, .ija or .hgr (listings)");
  return *kind;
}

void write_matrix(const std::string& path, file_kind kind, const csr_matrix& mat) {
  if (kind == file_kind::hypergraph)
    require_memory_for_columns(mat.m, 1, path + ": a line for each column");
  replacement file(path);
  try {
    if (kind == file_kind::market)
      csr_matrix_write_market(file.path(), mat);
    else
      dump_and_close(file.path(), kind, mat);
  } catch (const failure& why) {
    throw failure(with_name_asked(why.what(), file.path(), path));
  }
  file.commit();
}

}  // namespace csrmat
