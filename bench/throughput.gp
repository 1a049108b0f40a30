# Megabytes a second, ours beside the peer's.
set terminal svg size 900,420 font 'sans-serif,13' background 'white'
set datafile separator '\t'
set style data histograms
set style fill solid 0.8 noborder
set boxwidth 0.9
set ylabel 'MB a second'
set yrange [0:*]
set grid y
set key top left
set xtics rotate by -20 scale 0
plot folder.'/throughput.tsv' using 2:xtic(1) title 'ours' linecolor rgb '#2a6f97', \
     '' using 3 title 'peer' linecolor rgb '#b0b0b0'
