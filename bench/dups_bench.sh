#!/usr/bin/env bash
# Duplicate-finder benchmark: `sondrel-cli dups --json` against jdupes -r -Q, rmlint (its default
# finder, output to /dev/null), fdupes -r and the sampled-read floor, on one seeded media-like
# set, warm cache and (as root) cold cache, in one run.
#
# Usage: bench/dups_bench.sh [SET_DIR] [RUNS]
#   SET_DIR  where the generated set lives (made once; default /var/tmp/sondrel-dups-set)
#   RUNS     timed warm runs per tool after one warm-up run (default 5)
# Environment: FILES (default 10000) and SCALE (default 0.08) are passed to the generator;
# COLD=0 skips the cold-cache runs (which need root: they drop the page cache before each run);
# COLD_RUNS (default 3); SLOW=0 leaves fdupes out.
#
# Prints first the set it measures: the generator's parameters (the scale shrinks the nominal
# sizes, so say which was used), its file count and total size. Then for each tool the median
# wall time, the ratios to the floor and to sondrel, CPU time and peak RSS (GNU time); then which
# files each peer groups differently from sondrel on the set, with the trap pairs (same size,
# differing only in the head, middle or tail sample, or only outside the samples) listed per
# tool; last, bench/dups_trap_check.sh: `dups trash` on copies of the outside-the-samples traps
# and of one true pair, which must refuse every trap copy.
set -euo pipefail
# shellcheck source=bench/warm_runs.sh
source "$(dirname "$0")/warm_runs.sh"

top=$(cd "$(dirname "$0")/.." && pwd)
set_dir=${1:-/var/tmp/sondrel-dups-set}
runs=${2:-5}
build=$top/build/bench-release

if ! command -v jdupes >/dev/null || ! command -v rmlint >/dev/null ||
  ! command -v fdupes >/dev/null || [ ! -x /usr/bin/time ]; then
  "$top/scripts/install-deps" --bench
fi

cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DSONDREL_BUILD_GUI=OFF >/dev/null
cmake --build "$build" --target sondrel-cli sondrel-bench-dup_gen sondrel-bench-dups_floor \
  -j2 >/dev/null
cli=$build/cli/sondrel-cli
floor=$build/bench/sondrel-bench-dups_floor

# The set is made once per set of generator parameters, which .complete records.
params="--seed 1 --files ${FILES:-10000} --scale ${SCALE:-0.08}"
made_with=$(cat "$set_dir/.complete" 2>/dev/null || true)
if [ ! -e "$set_dir/.complete" ] || { [ -n "$made_with" ] && [ "$made_with" != "$params" ]; }; then
  rm -rf "$set_dir"
  echo "generating the set in $set_dir ($params) ..."
  # shellcheck disable=SC2086 # params is a list of options
  "$build/bench/sondrel-bench-dup_gen" "$set_dir" $params
  echo "$params" >"$set_dir/.complete"
  made_with=$params
fi
unrecorded="(parameters not recorded: remove the folder to remake it)"
scale=$(sed -n 's/.*--scale \([^ ]*\).*/\1/p' <<<"$made_with")
echo "set: $set_dir, made by sondrel-bench-dup_gen ${made_with:-$unrecorded}"
echo "  scale ${scale:-unknown}: the part above 1 MiB of the nominal sizes (photos 2-8 MB," \
  "documents 1-5 MB, videos 100-700 MB) is multiplied by it"
echo "  $(find "$set_dir" -type f -size +1023k | wc -l) files over 1 MiB," \
  "$(du -sb "$set_dir" | cut -f1) bytes ($(du -sh "$set_dir" | cut -f1)) in all;" \
  "$(nproc) cores, load $(cut -d' ' -f1-3 /proc/loadavg)"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" # rmlint writes nothing here (its outputs go to /dev/null), but be safe

declare -A commands=(
  [sondrel]="$cli --json dups $set_dir"
  [floor-2t]="$floor --threads 2 $set_dir"
  [jdupes]="jdupes -r -Q $set_dir"
  [rmlint]="rmlint -o json:/dev/null $set_dir"
  [fdupes]="fdupes -r $set_dir"
)
order=(floor-2t sondrel jdupes rmlint)
if [ "${SLOW:-1}" = 1 ]; then
  order+=(fdupes)
fi

declare -A wall cpu rss cold
time_warm_runs

if [ "${COLD:-1}" = 1 ] && [ -w /proc/sys/vm/drop_caches ]; then
  for tool in "${order[@]}"; do
    : >"$scratch/cold-$tool"
    for ((i = 0; i < ${COLD_RUNS:-3}; i++)); do
      sync
      echo 3 >/proc/sys/vm/drop_caches
      /usr/bin/time -f "%e" -o "$scratch/t" ${commands[$tool]} >/dev/null 2>/dev/null || true
      cat "$scratch/t" >>"$scratch/cold-$tool"
    done
    cold[$tool]=$(median <"$scratch/cold-$tool")
  done
fi

ratio() { echo "$1 / $2" | bc -l; }
echo
echo "set: $set_dir (${made_with:-parameters not recorded}); load after the runs" \
  "$(cut -d' ' -f1-3 /proc/loadavg)"
printf '%-9s %8s %8s %10s %8s %11s %9s %9s %10s\n' tool "warm s" "x floor" "x sondrel" "cpu s" \
  "peak RSS MB" "cold s" "x floor" "x sondrel"
for tool in "${order[@]}"; do
  if [ -n "${cold[$tool]:-}" ]; then
    cold_cols=$(printf '%9.2f %9.2f %10.2f' "${cold[$tool]}" "$(ratio "${cold[$tool]}" "${cold[floor-2t]}")" \
      "$(ratio "${cold[$tool]}" "${cold[sondrel]}")")
  else
    cold_cols=$(printf '%9s %9s %10s' - - -)
  fi
  printf '%-9s %8.3f %8.2f %10.2f %8.3f %11.1f %s\n' "$tool" "${wall[$tool]}" \
    "$(ratio "${wall[$tool]}" "${wall[floor-2t]}")" "$(ratio "${wall[$tool]}" "${wall[sondrel]}")" \
    "${cpu[$tool]}" "$(ratio "${rss[$tool]}" 1024)" "$cold_cols"
done
fastest=jdupes
if (($(echo "${wall[rmlint]} < ${wall[jdupes]}" | bc -l))); then fastest=rmlint; fi
echo
echo "targets: fastest of jdupes -Q and rmlint / sondrel >= 2 (warm and cold);" \
  "sondrel <= 1.3 x floor; sondrel peak RSS < 50 MB"
printf 'measured warm: %s / sondrel = %.2f; sondrel / floor = %.2f; RSS %.1f MB\n' "$fastest" \
  "$(ratio "${wall[$fastest]}" "${wall[sondrel]}")" "$(ratio "${wall[sondrel]}" "${wall[floor-2t]}")" \
  "$(ratio "${rss[sondrel]}" 1024)"
if [ -n "${cold[sondrel]:-}" ]; then
  cfast=jdupes
  if (($(echo "${cold[rmlint]} < ${cold[jdupes]}" | bc -l))); then cfast=rmlint; fi
  printf 'measured cold: %s / sondrel = %.2f; sondrel / floor = %.2f\n' "$cfast" \
    "$(ratio "${cold[$cfast]}" "${cold[sondrel]}")" "$(ratio "${cold[sondrel]}" "${cold[floor-2t]}")"
fi

# How each tool groups the set: every tool's groups in fdupes' format (blank-line separated).
$cli --json dups "$set_dir" >"$scratch/sondrel.json"
jdupes -r -Q "$set_dir" >"$scratch/jdupes.groups" 2>/dev/null || true
rmlint -o fdupes:"$scratch/rmlint.groups" "$set_dir" >/dev/null 2>&1 || true
if [ "${SLOW:-1}" = 1 ]; then
  fdupes -r "$set_dir" >"$scratch/fdupes.groups" 2>/dev/null || true
fi
python3 - "$scratch" <<'EOF'
import json, os, re, sys
scratch = sys.argv[1]

def fdupes_groups(path):
    groups, current = [], []
    for line in open(path, encoding="utf-8", errors="surrogateescape"):
        line = line.rstrip("\n")
        if not line.strip():
            if len(current) > 1:
                groups.append(frozenset(current))
            current = []
        else:
            current.append(re.sub(r"^\s+", "", line))
    if len(current) > 1:
        groups.append(frozenset(current))
    return groups

ours = [frozenset(f["path"] for f in g["files"])
        for g in json.load(open(os.path.join(scratch, "sondrel.json")))["groups"]]

def pairs(groups):
    out = set()
    for g in groups:
        for a in g:
            for b in g:
                if a < b:
                    out.add((a, b))
    return out

def trap_pairs(groups):
    found = {}
    for a, b in pairs(groups):
        m = re.search(r"trap-(\w+)-\d+-", a)
        if m and "trap-" in b:
            found[m.group(1)] = found.get(m.group(1), 0) + 1
    return found

print()
print("sondrel: %d groups, %d files; trap pairs grouped: %s"
      % (len(ours), sum(len(g) for g in ours), trap_pairs(ours) or "none"))
our_pairs = pairs(ours)
for tool in ("jdupes", "rmlint", "fdupes"):
    path = os.path.join(scratch, tool + ".groups")
    if not os.path.exists(path):
        continue
    theirs = fdupes_groups(path)
    their_pairs = pairs(theirs)
    only_ours = sorted(our_pairs - their_pairs)
    only_theirs = sorted(their_pairs - our_pairs)
    print("%s: %d groups, %d files; trap pairs grouped: %s; pairs only sondrel groups: %d; "
          "pairs only %s groups: %d"
          % (tool, len(theirs), sum(len(g) for g in theirs), trap_pairs(theirs) or "none",
             len(only_ours), tool, len(only_theirs)))
    for a, b in (only_ours[:4] + only_theirs[:4]):
        print("   %s  ~  %s" % (os.path.basename(a), os.path.basename(b)))
EOF

# The verify step on the traps the sampled digest cannot tell apart (not timed).
"$top/bench/dups_trap_check.sh" "$cli" "$set_dir" "$scratch/sondrel.json" || true
