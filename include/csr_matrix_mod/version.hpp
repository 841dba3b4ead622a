// SPDX-License-Identifier: MIT
// The version is written here and nowhere else: the build reads it from these three lines.
#pragma once

#define CSR_MATRIX_MOD_VERSION_MAJOR 0
#define CSR_MATRIX_MOD_VERSION_MINOR 1
#define CSR_MATRIX_MOD_VERSION_PATCH 0
