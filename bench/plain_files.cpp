// SPDX-License-Identifier: MIT
#include "plain.hpp"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <utility>

namespace bench::plain {

namespace {

struct closer {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using stream = std::unique_ptr<std::FILE, closer>;

stream open(const std::string& name, const char* mode) {
  stream file(std::fopen(name.c_str(), mode));
  if (file == nullptr) throw std::runtime_error("cannot open " + name);
  return file;
}

// A file system that is full may say so only now.
void close_written(stream file, const std::string& name) {
  const bool written = std::ferror(file.get()) == 0;
  if (std::fclose(file.release()) != 0 || !written)
    throw std::runtime_error("cannot write " + name);
}

// General editing, 20 columns, 8 digits: fixed where the exponent allows, else 0.dddddddd E form.
void write_value(std::FILE* file, double value) {
  if (value == 0) {
    std::fprintf(file, "%16.7f    \n", value);
    return;
  }
  char digits[40];
  std::snprintf(digits, sizeof digits, "%.7E", value);
  char* const mark = std::strchr(digits, 'E');
  const long exponent = std::strtol(mark + 1, nullptr, 10) + 1;
  if (exponent >= 0 && exponent <= 8) {
    const int places = 8 - static_cast<int>(exponent);
    std::fprintf(file, places == 0 ? "%15.*f.    \n" : "%16.*f    \n", places, value);
    return;
  }
  // d.ddddddd becomes 0.dddddddd, with the exponent one higher.
  *mark = '\0';
  const char* const sign = digits[0] == '-' ? "-" : "";
  const char* const first = digits + (digits[0] == '-' ? 1 : 0);
  char text[40];
  if (std::labs(exponent) < 100)
    std::snprintf(text, sizeof text, "%s0.%c%sE%+03ld", sign, first[0], first + 2, exponent);
  else
    std::snprintf(text, sizeof text, "%s0.%c%s%+04ld", sign, first[0], first + 2, exponent);
  std::fprintf(file, "%20s\n", text);
}

// Row by row; a row without entries is an empty line.
template <class Write>
void write_rows(std::FILE* file, const matrix& a, Write write) {
  for (std::size_t i = 0; i + 1 < a.starts.size(); ++i) {
    if (a.starts[i] == a.starts[i + 1]) std::fputc('\n', file);
    for (std::int32_t k = a.starts[i]; k < a.starts[i + 1]; ++k)
      write(static_cast<std::size_t>(k - 1));
  }
}

template <class Read>
void read_rows(std::FILE* file, const matrix& a, Read read) {
  char line[128];
  const auto next = [&] {
    if (std::fgets(line, sizeof line, file) == nullptr) throw std::runtime_error("short file");
  };
  for (std::size_t i = 0; i + 1 < a.starts.size(); ++i) {
    if (a.starts[i] == a.starts[i + 1]) next();
    for (std::int32_t k = a.starts[i]; k < a.starts[i + 1]; ++k) {
      next();
      read(static_cast<std::size_t>(k - 1), line);
    }
  }
}

std::int32_t integer(const char* text) {
  return static_cast<std::int32_t>(std::strtol(text, nullptr, 10));
}

// A record: its length before and after it. None here is long enough to be split.
template <class T>
void write_record(std::FILE* file, const T* items, std::size_t count) {
  const auto bytes = static_cast<std::int32_t>(count * sizeof(T));
  std::fwrite(&bytes, sizeof bytes, 1, file);
  std::fwrite(items, sizeof(T), count, file);
  std::fwrite(&bytes, sizeof bytes, 1, file);
}

template <class T>
void read_record(std::FILE* file, T* items, std::size_t count) {
  std::int32_t before = 0;
  std::int32_t after = 0;
  const bool whole = std::fread(&before, sizeof before, 1, file) == 1 &&
                     std::fread(items, sizeof(T), count, file) == count &&
                     std::fread(&after, sizeof after, 1, file) == 1;
  if (!whole || before != after) throw std::runtime_error("bad record");
}

}  // namespace

void write_text(const matrix& a, const std::string& name) {
  stream file = open(name, "w");
  std::fprintf(file.get(), " F\n%10d%10d\n", a.n, a.m);
  for (const std::int32_t start : a.starts) std::fprintf(file.get(), "%10d\n", start);
  write_rows(file.get(), a,
             [&](std::size_t k) { std::fprintf(file.get(), "%10d\n", a.columns[k]); });
  write_rows(file.get(), a, [&](std::size_t k) { write_value(file.get(), a.values[k]); });
  close_written(std::move(file), name);
}

void read_text(matrix& a, const std::string& name) {
  const stream file = open(name, "r");
  char line[128];
  const auto next = [&] {
    if (std::fgets(line, sizeof line, file.get()) == nullptr)
      throw std::runtime_error("short file");
  };
  next();
  next();
  a.m = integer(line + 10);
  line[10] = '\0';
  a.n = integer(line);
  for (std::int32_t& start : a.starts) {
    next();
    start = integer(line);
  }
  read_rows(file.get(), a, [&](std::size_t k, const char* text) { a.columns[k] = integer(text); });
  read_rows(file.get(), a,
            [&](std::size_t k, const char* text) { a.values[k] = std::strtod(text, nullptr); });
}

void write_binary(const matrix& a, const std::string& name) {
  stream file = open(name, "wb");
  const std::int32_t structure_only = 0;
  const std::int32_t shape[2] = {a.n, a.m};
  write_record(file.get(), &structure_only, 1);
  write_record(file.get(), shape, 2);
  write_record(file.get(), a.starts.data(), a.starts.size());
  write_record(file.get(), a.columns.data(), a.columns.size());
  write_record(file.get(), a.values.data(), a.values.size());
  close_written(std::move(file), name);
}

void read_binary(matrix& a, const std::string& name) {
  const stream file = open(name, "rb");
  std::int32_t structure_only = 0;
  std::int32_t shape[2] = {};
  read_record(file.get(), &structure_only, 1);
  read_record(file.get(), shape, 2);
  a.n = shape[0];
  a.m = shape[1];
  read_record(file.get(), a.starts.data(), a.starts.size());
  read_record(file.get(), a.columns.data(), a.columns.size());
  read_record(file.get(), a.values.data(), a.values.size());
}

}  // namespace bench::plain
