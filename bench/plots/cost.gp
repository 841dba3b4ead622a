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
stats data using 1 nooutput
plot for [block = 0:STATS_blocks - 1] data index block using 1:2 with linespoints \
     title columnheader(1)
