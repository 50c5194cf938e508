# Sourced by the comparison benchmarks (bash). Times every tool the same way, warm cache.
#
# time_warm_runs: for each name in the array `order`, runs the command line `commands[name]`
# (an associative array; word-split, no shell syntax) once as a warm-up (caches filled, binary
# paged in), then `runs` timed runs under GNU time, round-robin over the tools so that a burst
# of load elsewhere on the machine hits every tool alike. Sets, per tool, the medians into the
# associative arrays `wall` (seconds), `cpu` (user + system seconds, which hardly depend on
# load) and `rss` (peak kilobytes), which the caller declares. Needs `scratch` (a writable
# folder) and /usr/bin/time. A failing tool is timed all the same; its output is discarded.

# The median of the numbers on standard input, one per line.
median() {
  sort -g | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'
}

time_warm_runs() {
  local tool i
  for tool in "${order[@]}"; do
    ${commands[$tool]} >/dev/null 2>&1 || true
    : >"$scratch/$tool"
  done
  for ((i = 0; i < runs; i++)); do
    for tool in "${order[@]}"; do
      /usr/bin/time -f "%e %U %S %M" -o "$scratch/t" ${commands[$tool]} >/dev/null 2>/dev/null || true
      tail -n 1 "$scratch/t" >>"$scratch/$tool"
    done
  done
  for tool in "${order[@]}"; do
    wall[$tool]=$(awk '{ print $1 }' "$scratch/$tool" | median)
    cpu[$tool]=$(awk '{ print $2 + $3 }' "$scratch/$tool" | median)
    rss[$tool]=$(awk '{ print $4 }' "$scratch/$tool" | median)
  done
}
