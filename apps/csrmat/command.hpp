// SPDX-License-Identifier: MIT
// The commands of the tool. Each declares its options and says what is run when it is chosen; the
// numbers and files behind them are elsewhere.
#pragma once

#include <CLI/CLI.hpp>

namespace csrmat {

void declare_info(CLI::App& command);
void declare_convert(CLI::App& command);
void declare_coarsen(CLI::App& command);
void declare_gallery(CLI::App& command);
void declare_plot(CLI::App& command);
void declare_sort(CLI::App& command);
void declare_clean(CLI::App& command);
void declare_symmetrize(CLI::App& command);
void declare_transpose(CLI::App& command);
void declare_multiply(CLI::App& command);
void declare_sum(CLI::App& command);
void declare_apply(CLI::App& command);

}  // namespace csrmat
