#!/usr/bin/env bash
# Junk scan benchmark: `sondrel-cli junk --json` against `du -s` over the same folders and
# against the syscall floor of measuring them (the floor walker in du mode, one run per folder),
# on one seeded home with developer caches, user caches, node_modules trees, logs and a Trash
# (at least 200,000 files), warm cache, in one run.
#
# Usage: bench/junk_bench.sh [HOME_DIR] [RUNS]
#   HOME_DIR  where the generated home lives (made once; default /var/tmp/sondrel-bench-junk)
#   RUNS      timed runs per tool after one warm-up run (default 7)
# Prints the median wall and CPU time of each tool, sondrel's ratio to the floor and du's ratio
# to sondrel, and checks that the scan's total equals what du -sB1 gives for the items it lists.
set -euo pipefail
# shellcheck source=bench/warm_runs.sh
source "$(dirname "$0")/warm_runs.sh"

top=$(cd "$(dirname "$0")/.." && pwd)
home=${1:-/var/tmp/sondrel-bench-junk}
runs=${2:-7}
build=$top/build/bench-release

if [ ! -x /usr/bin/time ]; then
  "$top/scripts/install-deps" --bench
fi
cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DSONDREL_BUILD_GUI=OFF >/dev/null
cmake --build "$build" --target sondrel-cli sondrel-bench-floor_walker -j2 >/dev/null
cli=$build/cli/sondrel-cli
floor=$build/bench/sondrel-bench-floor_walker

if [ ! -e "$home/.complete" ]; then
  rm -rf "$home"
  echo "generating the home in $home ..."
  python3 - "$home" <<'PY'
import os, random, sys
home = sys.argv[1]
rng = random.Random(1)
count = 0

def put(path, size):
    global count
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as f:
        if size:
            f.write(b"x" * size)
    count += 1

def size():
    # Most cache entries are small; a few are large.
    r = rng.random()
    return 0 if r < 0.6 else rng.randint(1, 4096) if r < 0.98 else rng.randint(100_000, 2_000_000)

def tree(root, files, fanout, depth):
    for i in range(files):
        parts = [f"d{rng.randrange(fanout)}" for _ in range(rng.randint(1, depth))]
        put(os.path.join(root, *parts, f"f{i}.bin"), size())

dev = {".npm/_cacache": 20000, ".cache/yarn": 15000, ".cache/pip": 8000, ".cache/go-build": 20000,
       "go/pkg/mod": 12000, ".cargo/registry/src": 15000, ".cargo/registry/cache": 2000,
       ".gradle/caches": 10000, ".m2/repository": 8000, ".cache/ccache": 10000}
for rel, n in dev.items():
    tree(os.path.join(home, rel), n, 16, 4)
for app in range(25):
    tree(os.path.join(home, ".cache", f"app{app}"), 1200, 8, 3)
for p in range(30):
    project = os.path.join(home, "projects", f"project{p}")
    tree(os.path.join(project, "src"), 100, 4, 2)
    nm = os.path.join(project, "node_modules")
    for pkg in range(60):
        tree(os.path.join(nm, f"pkg{pkg}"), 25, 3, 3)
        # nested dependency folders, never reported on their own
        tree(os.path.join(nm, f"pkg{pkg}", "node_modules", "dep"), 4, 2, 2)
for i in range(20):
    put(os.path.join(home, ".local/state", f"tool{i}.log"), rng.randint(0, 3_000_000))
put(os.path.join(home, ".xsession-errors"), 2_500_000)
for i in range(40):
    tree(os.path.join(home, ".local/share/Trash/files", f"old{i}"), 100, 4, 2)
print(f"{count} files")
PY
  touch "$home/.complete"
fi

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# The folders the scan measures or walks, for du and the floor.
folders=()
for rel in .npm/_cacache .cache go/pkg/mod .cargo/registry .gradle/caches .m2/repository projects \
  .local/state .local/share/Trash/files; do
  folders+=("$home/$rel")
done
cat >"$scratch/floor.sh" <<EOF
for f in ${folders[*]}; do $floor --threads 2 --du "\$f"; done
EOF

declare -A commands=(
  [floor]="bash $scratch/floor.sh"
  [sondrel]="env HOME=$home XDG_CACHE_HOME=$home/.cache XDG_DATA_HOME=$home/.local/share XDG_STATE_HOME=$home/.local/state XDG_CONFIG_HOME=$home/.config $cli junk --json"
  [du]="du -s ${folders[*]}"
)
order=(floor sondrel du)

declare -A wall cpu rss
time_warm_runs

files=$(find "$home" -type f | wc -l)
echo
echo "home: $home ($files files, $(nproc) cores, load $(cut -d' ' -f1-3 /proc/loadavg), $runs warm runs each, medians)"
printf '%-8s %8s %9s %11s %8s\n' tool "wall s" "x floor" "x sondrel" "cpu s"
for tool in "${order[@]}"; do
  printf '%-8s %8.3f %9.2f %11.2f %8.3f\n' "$tool" "${wall[$tool]}" \
    "$(echo "${wall[$tool]} / ${wall[floor]}" | bc -l)" \
    "$(echo "${wall[$tool]} / ${wall[sondrel]}" | bc -l)" "${cpu[$tool]}"
done
echo
echo "targets: sondrel <= 1.2 x floor; du / sondrel >= 1.5"
printf 'measured: sondrel / floor = %.2f; du / sondrel = %.2f\n' \
  "$(echo "${wall[sondrel]} / ${wall[floor]}" | bc -l)" \
  "$(echo "${wall[du]} / ${wall[sondrel]}" | bc -l)"

# Every listed item's size equals du -sB1 of its path (a folder) or its length (a file).
${commands[sondrel]} >"$scratch/junk.json"
python3 - "$scratch/junk.json" <<'PY'
import json, os, subprocess, sys
groups = json.load(open(sys.argv[1]))["groups"]
bad = 0
items = 0
for group in groups:
    for item in group["items"]:
        items += 1
        path = item["path"].encode("utf-8", "surrogateescape")
        if os.path.isdir(path) and not os.path.islink(path):
            expected = int(subprocess.check_output(["du", "-sxB1", path]).split()[0])
        else:
            expected = os.lstat(path).st_size
        if expected != item["size"]:
            bad += 1
            print(f"SIZE DIFFERS: {item['path']}: sondrel {item['size']}, du {expected}", file=sys.stderr)
print(f"{items} items in {len(groups)} groups; sizes {'match du' if not bad else 'DIFFER'}")
sys.exit(1 if bad else 0)
PY
