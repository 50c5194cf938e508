#!/usr/bin/env bash
# Large-file search benchmark: `sondrel-cli large --json` against fd, find and the syscall floor
# of the same search, on one seeded home-like tree with large sparse files at every depth (some
# inside pruned folders), warm cache, in one run.
#
# Usage: bench/large_bench.sh [TREE_DIR] [RUNS]
#   TREE_DIR  where the generated tree lives (made once; default /var/tmp/sondrel-bench-large)
#   RUNS      timed runs per tool after one warm-up run (default 7)
# Prints the median wall and CPU time of each tool, sondrel's ratio to the floor and each peer's
# ratio to sondrel, and checks that sondrel found the same files as `find` once the names the
# search leaves out (hidden, pruned, *.app folders) are taken away, compared by device and inode.
set -euo pipefail
# shellcheck source=bench/warm_runs.sh
source "$(dirname "$0")/warm_runs.sh"

top=$(cd "$(dirname "$0")/.." && pwd)
tree=${1:-/var/tmp/sondrel-bench-large}
runs=${2:-7}
build=$top/build/bench-release

if ! command -v fdfind >/dev/null || [ ! -x /usr/bin/time ]; then
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
  "$build/bench/sondrel-bench-tree_gen" "$tree" --seed 1 --large 400
  touch "$tree/.complete"
fi

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

pruned=(node_modules .git .build DerivedData Pods Caches vendor .venv venv .cargo .rustup build
  dist Cache TemporaryItems Containers)
prune_args=()
for name in "${pruned[@]}"; do prune_args+=(--prune "$name"); done

declare -A commands=(
  [floor]="$floor --threads 2 --skip-hidden ${prune_args[*]} --min 20971520 $tree"
  [sondrel]="$cli large --json $tree"
  [fd]="fdfind --type f --size +20M --no-ignore . $tree"
  [find]="find $tree -type f -size +20479k"
)
order=(floor sondrel fd find)

declare -A wall cpu rss
time_warm_runs

echo
echo "tree: $tree ($(nproc) cores, load $(cut -d' ' -f1-3 /proc/loadavg), $runs warm runs each, medians)"
echo "floor: $(${commands[floor]})"
printf '%-8s %8s %9s %11s %8s\n' tool "wall s" "x floor" "x sondrel" "cpu s"
for tool in "${order[@]}"; do
  printf '%-8s %8.3f %9.2f %11.2f %8.3f\n' "$tool" "${wall[$tool]}" \
    "$(echo "${wall[$tool]} / ${wall[floor]}" | bc -l)" \
    "$(echo "${wall[$tool]} / ${wall[sondrel]}" | bc -l)" "${cpu[$tool]}"
done
echo
echo "targets: sondrel <= 1.15 x floor; fd / sondrel >= 1.5"
printf 'measured: sondrel / floor = %.2f; fd / sondrel = %.2f; find / sondrel = %.2f\n' \
  "$(echo "${wall[sondrel]} / ${wall[floor]}" | bc -l)" \
  "$(echo "${wall[fd]} / ${wall[sondrel]}" | bc -l)" \
  "$(echo "${wall[find]} / ${wall[sondrel]}" | bc -l)"

# The same files as find, less what the search leaves out, compared by (device, inode).
$cli large --json "$tree" >"$scratch/sondrel.json"
find "$tree" -type f -size +20479k -printf '%D %i %s %P\0' >"$scratch/find.txt"
python3 - "$scratch/sondrel.json" "$scratch/find.txt" "${pruned[@]}" <<'PY'
import json, os, sys
ours_path, find_path, *pruned = sys.argv[1:]
pruned = set(pruned)
ours = set()
for item in json.load(open(ours_path))["files"]:
    info = os.stat(item["path"].encode("utf-8", "surrogateescape"), follow_symlinks=False)
    ours.add((info.st_dev, info.st_ino))
expected = set()
for record in open(find_path, "rb").read().split(b"\0"):
    if not record:
        continue
    dev, ino, size, rel = record.split(b" ", 3)
    parts = rel.split(b"/")
    if int(size) < 20971520 or any(p.startswith(b".") for p in parts) or \
       any(p.decode("utf-8", "replace") in pruned or p.lower().endswith(b".app") for p in parts[:-1]):
        continue
    expected.add((int(dev), int(ino)))
# find prints %D as the device number in decimal like st_dev.
if ours == expected:
    print(f"same files as find minus the left-out folders: {len(ours)} (each inode once)")
else:
    print(f"FILES DIFFER: sondrel {len(ours)}, find {len(expected)}, "
          f"only sondrel {len(ours - expected)}, only find {len(expected - ours)}", file=sys.stderr)
    sys.exit(1)
PY
