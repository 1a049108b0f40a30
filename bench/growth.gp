# How time grows with the number of tasks.
set terminal svg size 900,420 font 'sans-serif,13' background 'white'
set datafile separator '\t'
set logscale xy
set xlabel 'tasks'
set ylabel 'seconds'
set format y '10^{%L}'
set grid
set key top left
set rmargin 6
plot for [name in 'controller list loading'] '< sort -g '.folder.'/growth-'.name.'.tsv' \
    using 1:2 with linespoints linewidth 2 pointtype 7 \
    title name eq 'controller' ? 'controller, one task' : \
          name eq 'list' ? 'videodown list' : 'loading the history'
