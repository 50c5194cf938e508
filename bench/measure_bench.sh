#!/usr/bin/env bash
# measureTree benchmark: the allocated and apparent size of a whole tree, against `du -s` and the
# syscall floor of a du-style measure (every entry stat'ed, folders included), on the seeded
# tree of scan_bench.sh (hidden names included: a measure counts everything), warm cache, in one
# run.
#
# Usage: bench/measure_bench.sh [TREE_DIR] [RUNS]
# Prints the median wall and CPU time of each tool and its ratio to the floor, and checks that
# measureTree's figures equal du's to the byte.
set -euo pipefail
# shellcheck source=bench/warm_runs.sh
source "$(dirname "$0")/warm_runs.sh"

top=$(cd "$(dirname "$0")/.." && pwd)
tree=${1:-/var/tmp/sondrel-bench-tree}
runs=${2:-7}
build=$top/build/bench-release

if [ ! -x /usr/bin/time ]; then
  "$top/scripts/install-deps" --bench
fi
cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DSONDREL_BUILD_GUI=OFF >/dev/null
cmake --build "$build" --target sondrel-bench-measure sondrel-bench-tree_gen \
  sondrel-bench-floor_walker -j2 >/dev/null
measure=$build/bench/sondrel-bench-measure
floor=$build/bench/sondrel-bench-floor_walker

if [ ! -e "$tree/.complete" ]; then
  rm -rf "$tree"
  echo "generating the tree in $tree ..."
  "$build/bench/sondrel-bench-tree_gen" "$tree" --seed 1
  touch "$tree/.complete"
fi

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

declare -A commands=(
  [floor-du]="$floor --threads 2 --du $tree"
  [measure]="$measure $tree"
  [du-B1]="du -sB1 $tree"
  [du-b]="du -sb $tree"
)
order=(floor-du measure du-B1 du-b)

declare -A wall cpu rss
time_warm_runs

echo
echo "tree: $tree ($(nproc) cores, load $(cut -d' ' -f1-3 /proc/loadavg), $runs warm runs each, medians)"
printf '%-10s %8s %9s %8s\n' tool "wall s" "x floor" "cpu s"
for tool in "${order[@]}"; do
  printf '%-10s %8.3f %9.2f %8.3f\n' "$tool" "${wall[$tool]}" \
    "$(echo "${wall[$tool]} / ${wall[floor-du]}" | bc -l)" "${cpu[$tool]}"
done
echo
echo "targets: measure <= 1.1 x floor-du; measure no slower than du -sB1"
printf 'measured: measure / floor = %.2f; du -sB1 / measure = %.2f\n' \
  "$(echo "${wall[measure]} / ${wall[floor-du]}" | bc -l)" \
  "$(echo "${wall[du-B1]} / ${wall[measure]}" | bc -l)"

read -r _ allocated _ apparent _ < <($measure "$tree")
du_allocated=$(du -sB1 "$tree" | cut -f1)
du_apparent=$(du -sb "$tree" | cut -f1)
if [ "$allocated" = "$du_allocated" ] && [ "$apparent" = "$du_apparent" ]; then
  echo "figures agree with du: $allocated allocated, $apparent apparent bytes"
else
  echo "FIGURES DIFFER: measure $allocated/$apparent, du $du_allocated/$du_apparent" >&2
  exit 1
fi
