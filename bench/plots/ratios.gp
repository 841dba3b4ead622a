# SPDX-License-Identifier: MIT
# Bars of ours and of the fastest peer, plain = 1: gnuplot -e "results='FOLDER'; memory='fresh'"
set terminal svg size 1100,560 font "sans,11" background "white"
set output sprintf("%s/ratios-%s.svg", results, memory)
set title sprintf("Speed against the plain algorithm, %s memory", memory)
set ylabel "times as fast as plain"
set logscale y 2
set grid ytics
set key top right
set style data histogram
set style histogram clustered gap 1
set style fill solid 0.8 noborder
set boxwidth 0.9
set xtics rotate by 55 right noenhanced
set bmargin 12
set datafile separator tab
data = sprintf("%s/ratios-%s.dat", results, memory)
plot data skip 1 using 2:xtic(1) title "csr\\_matrix\\_mod" linecolor rgb "#1b6ca8", \
     data skip 1 using 3 title "fastest peer" linecolor rgb "#e0a030", \
     1 with lines linecolor rgb "#606060" dashtype 2 title "plain"
