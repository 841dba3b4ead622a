# SPDX-License-Identifier: MIT
# Nanoseconds for each scalar product, or entry, as matrices grow: gnuplot -e "data='cost-x.dat'"
set terminal svg size 760,460 font "sans,11" background "white"
set output data[1:strlen(data) - 4].".svg"
set title "Cost as matrices grow, fresh memory"
set xlabel "rows"
set ylabel "ns for each scalar product, or entry"
set logscale xy
set grid
set key outside right
set linetype 1 linecolor rgb "#606060" dashtype 2  # plain and ours come first
set linetype 2 linecolor rgb "#1b6ca8" linewidth 3
set linetype 3 linecolor rgb "#e0a030"
set linetype 4 linecolor rgb "#c0392b"
set linetype 5 linecolor rgb "#27ae60"
set linetype 6 linecolor rgb "#8e44ad"
set linetype 7 linecolor rgb "#16a085"
set linetype 8 linecolor rgb "#d35400"
set linetype 9 linecolor rgb "#c2185b"
set linetype 10 linecolor rgb "#795548"
set linetype 11 linecolor rgb "#9aa5a6"
stats data using 1 nooutput
plot for [block = 0:STATS_blocks - 1] data index block using 1:2 with linespoints \
     title columnheader(1)
