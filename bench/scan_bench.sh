#!/usr/bin/env bash
# Folder-scan benchmark: sondrel-cli scan against gdu, ncdu, du and the syscall floor, on one
# seeded home-like tree, warm cache, in one run.
#
# The tree has no hidden entries: sondrel skips hidden names by design while gdu, ncdu and du
# walk them, so only on such a tree do all tools see the same files and the ratios compare like
# with like. HIDDEN=1 uses the tree with hidden entries instead (about a third of the files).
#
# Usage: bench/scan_bench.sh [TREE_DIR] [RUNS]
#   TREE_DIR  where the generated tree lives (made once; default
#             /var/tmp/sondrel-bench-tree-visible, or /var/tmp/sondrel-bench-tree with HIDDEN=1)
#   RUNS      timed runs per tool after one warm-up run (default 7)
# The benchmark binaries are built outside the source tree, in SONDREL_BENCH_BUILD (default
# /var/tmp/sondrel-bench-build).
# With BEFORE=/path/to/an/older/sondrel-cli it also times that binary in the same runs (a change's
# before and after, side by side). With COLD=1 (as root) it also times sondrel, gdu and the floor walker with the page, dentry
# and inode caches dropped before every run (3 runs each).
#
# Prints for each tool the median wall time, the ratio to the 2-thread floor walker and to
# sondrel, and the peak RSS (GNU time). Also checks that sondrel's total equals the floor
# walker's (the same files: hidden names and links skipped, hard links once).
set -euo pipefail
# shellcheck source=bench/warm_runs.sh
source "$(dirname "$0")/warm_runs.sh"

top=$(cd "$(dirname "$0")/.." && pwd)
if [ "${HIDDEN:-0}" = 1 ]; then
  tree=${1:-/var/tmp/sondrel-bench-tree}
  gen_flags=()
else
  tree=${1:-/var/tmp/sondrel-bench-tree-visible}
  gen_flags=(--no-hidden)
fi
runs=${2:-7}
build=${SONDREL_BENCH_BUILD:-/var/tmp/sondrel-bench-build}

if ! command -v gdu >/dev/null || ! command -v ncdu >/dev/null || [ ! -x /usr/bin/time ]; then
  "$top/scripts/install-deps" --bench
fi

cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DSONDREL_BUILD_GUI=OFF >/dev/null
cmake --build "$build" --target sondrel-cli sondrel-bench-tree_gen sondrel-bench-floor_walker \
  -j2 >/dev/null
cli=$build/cli/sondrel-cli
floor=$build/bench/sondrel-bench-floor_walker

if [ ! -e "$tree/.complete" ]; then
  rm -rf "$tree"
  echo "generating the tree in $tree ..."
  "$build/bench/sondrel-bench-tree_gen" "$tree" --seed 1 "${gen_flags[@]}"
  touch "$tree/.complete"
fi

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

declare -A commands=(
  [sondrel]="$cli --json scan $tree"
  [floor-2t]="$floor --threads 2 --skip-hidden $tree"
  [gdu]="gdu -npc $tree"
  [ncdu]="ncdu -0 -o /dev/null $tree"
  [du]="du -sb $tree"
)
order=(floor-2t sondrel gdu ncdu du)
if [ -n "${BEFORE:-}" ]; then
  commands[before]="$BEFORE --json scan $tree"
  order+=(before)
fi

declare -A wall cpu rss
time_warm_runs

echo
hidden_files=$(find "$tree" -name '.*' ! -name .complete 2>/dev/null | wc -l)
echo "tree: $tree, $hidden_files hidden entries ($(nproc) cores, load $(cut -d' ' -f1-3 /proc/loadavg), $runs warm runs each, medians)"
printf '%-10s %8s %9s %10s %8s %9s %12s\n' tool "wall s" "x floor" "x sondrel" "cpu s" "cpu x fl" "peak RSS MB"
for tool in "${order[@]}"; do
  printf '%-10s %8.3f %9.2f %10.2f %8.3f %9.2f %12.1f\n' "$tool" "${wall[$tool]}" \
    "$(echo "${wall[$tool]} / ${wall[floor-2t]}" | bc -l)" \
    "$(echo "${wall[$tool]} / ${wall[sondrel]}" | bc -l)" \
    "${cpu[$tool]}" "$(echo "${cpu[$tool]} / ${cpu[floor-2t]}" | bc -l)" \
    "$(echo "${rss[$tool]} / 1024" | bc -l)"
done

echo
echo "targets: sondrel <= 1.15 x floor-2t; gdu / sondrel >= 2.4; sondrel RSS <= gdu RSS / 5"
printf 'measured: sondrel / floor = %.2f; gdu / sondrel = %.2f; gdu RSS / sondrel RSS = %.1f\n' \
  "$(echo "${wall[sondrel]} / ${wall[floor-2t]}" | bc -l)" \
  "$(echo "${wall[gdu]} / ${wall[sondrel]}" | bc -l)" \
  "$(echo "${rss[gdu]} / ${rss[sondrel]}" | bc -l)"

# Totals: the floor walker and the scan must agree to the byte.
floor_bytes=$($floor --threads 2 --skip-hidden "$tree" | awk '{ print $4 }')
scan_bytes=$($cli --json scan --apparent-size --depth 1 "$tree" | grep -o '"size":[0-9]*' | head -1 | cut -d: -f2)
if [ "$floor_bytes" = "$scan_bytes" ]; then
  echo "totals agree: $scan_bytes bytes"
else
  echo "TOTALS DIFFER: floor $floor_bytes, sondrel $scan_bytes" >&2
  exit 1
fi

if [ "${COLD:-0}" = 1 ]; then
  echo
  echo "cold cache (caches dropped before each run, 3 runs, medians):"
  for tool in floor-2t sondrel gdu; do
    : >"$scratch/cold-$tool"
    for ((i = 0; i < 3; i++)); do
      sync
      echo 3 >/proc/sys/vm/drop_caches
      /usr/bin/time -f "%e" -o "$scratch/t" ${commands[$tool]} >/dev/null 2>/dev/null || true
      cat "$scratch/t" >>"$scratch/cold-$tool"
    done
    printf '%-10s %9.3f s\n' "$tool" "$(median <"$scratch/cold-$tool")"
  done
fi

# Memory of the tree itself: arena bytes per node at the default depth and at full depth.
cmake --build "$build" --target sondrel-bench-scan_stats -j2 >/dev/null
"$build/bench/sondrel-bench-scan_stats" "$tree" --depth 4
"$build/bench/sondrel-bench-scan_stats" "$tree" --depth 1000
