# How the time of the whole print command grows, without previews. Sourced by tools/bench.
#
# Prints each series' times and its slope over the last decade, in decades of time for one of the
# count: 1 is linear. The shortest time, which is that of the start, is taken off first.
table=$out/growth.tsv
: >"$table"
while read -r series counts; do
  for count in $counts; do
    seconds=$(time_print --preview 0 "$(make_input "$series" "$count")" | cut -d ' ' -f 1)
    printf '%s\t%s\t%s\n' "$series" "$count" "$seconds" | tee -a "$table"
  done
  awk -v "series=$series" '
    $1 == series { before = last; last = $3; if (!start || $3 < start) start = $3 }
    END {
      if (before <= start) { print series ": no slope, all are as fast as the start"; exit }
      slope = log((last - start) / (before - start)) / log(10)
      printf "%s: slope %.2f%s\n", series, slope, (slope > 1.15 ? ", MORE THAN LINEAR" : "")
    }' "$table"
  printf '\n\n' >>"$table" # a data set of the plot
done <<'SERIES'
lines 100 1000 10000 100000 1000000
points 100 1000 10000 100000 1000000
texts 100 1000 10000 100000
fonts 10 100 1000 10000
clips 100 1000 10000 100000
picture 6 66 660 6600
pages 1 20 200 2000
SERIES

gnuplot <<PLOT
set terminal svg size 760,480 font "sans-serif,13" background "white"
set output "docs/images/growth.svg"
set logscale xy
set key left top reverse Left
set xlabel "count"
set ylabel "seconds"
set grid
names = "lines points texts fonts clips picture pages"
plot for [i=1:words(names)] "$table" index i-1 using 2:3 with linespoints \
  title word(names, i)
PLOT
