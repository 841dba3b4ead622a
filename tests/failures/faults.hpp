// SPDX-License-Identifier: MIT
// A disk that fails: one call of the library to the system's files, counted from 0, does not do
// what it should. The linker leads the calls to the counter (CMakeLists.txt).
#pragma once

namespace tests {

// From here on, call k to fopen, fread, fwrite, fseek, ftell or fclose fails as it may: nothing is
// opened, half of the bytes are read or written, nothing is known, the last bytes are lost.
void fail_file_call(int k);

// All is well again. Was there a call number k?
bool file_call_failed();

}  // namespace tests
