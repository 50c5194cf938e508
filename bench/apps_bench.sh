#!/usr/bin/env bash
# Application discovery benchmark: `sondrel-cli apps --json` (desktop entries, the dpkg database
# with every listed file of the packages that own an entry stat'ed for its size, leftovers and
# orphans) against `dpkg-query -W -f '${Installed-Size}'` (the package manager reading its own
# status file), warm and, when the page cache can be dropped (root), cold, in one run.
#
# Usage: bench/apps_bench.sh [CLI] [RUNS]
#   CLI   the sondrel-cli to time (default: a Release build in build/bench-release)
#   RUNS  timed runs per tool after one warm-up run (default 7)
# Prints the median wall and CPU time of each, the ratio sondrel / dpkg-query, and the number of
# installed packages and applications found.
set -euo pipefail

top=$(cd "$(dirname "$0")/.." && pwd)
cli=${1:-}
runs=${2:-7}
if [ -z "$cli" ]; then
  build=$top/build/bench-release
  cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DSONDREL_BUILD_GUI=OFF >/dev/null
  cmake --build "$build" --target sondrel-cli -j2 >/dev/null
  cli=$build/cli/sondrel-cli
fi

# shellcheck source=bench/warm_runs.sh
source "$top/bench/warm_runs.sh" # median
# Wall and CPU (user + system) seconds of one run, as "WALL CPU".
seconds() {
  /usr/bin/time -f "%e %U %S" -o /tmp/apps-bench-time "$@" >/dev/null 2>&1 || true
  awk '{ printf "%s %.3f\n", $1, $2 + $3 }' /tmp/apps-bench-time
}
wall() { awk '{ print $1 }' | median; }
cpu() { awk '{ print $2 }' | median; }
drop_caches() { sync; echo 3 > /proc/sys/vm/drop_caches 2>/dev/null; }

sondrel=("$cli" apps --json)
dpkg=(dpkg-query -W -f '${Installed-Size}\n')

"${sondrel[@]}" >/dev/null
"${dpkg[@]}" >/dev/null
for tool in sondrel dpkg; do : >"/tmp/apps-bench-$tool"; done
for ((i = 0; i < runs; i++)); do
  seconds "${sondrel[@]}" >>/tmp/apps-bench-sondrel
  seconds "${dpkg[@]}" >>/tmp/apps-bench-dpkg
done
warm_s=$(wall </tmp/apps-bench-sondrel)
warm_d=$(wall </tmp/apps-bench-dpkg)
cpu_s=$(cpu </tmp/apps-bench-sondrel)
cpu_d=$(cpu </tmp/apps-bench-dpkg)

cold_s=n/a
cold_d=n/a
if drop_caches; then
  : >/tmp/apps-bench-sondrel-cold
  : >/tmp/apps-bench-dpkg-cold
  for ((i = 0; i < 3; i++)); do
    drop_caches
    seconds "${sondrel[@]}" >>/tmp/apps-bench-sondrel-cold
    drop_caches
    seconds "${dpkg[@]}" >>/tmp/apps-bench-dpkg-cold
  done
  cold_s=$(wall </tmp/apps-bench-sondrel-cold)
  cold_d=$(wall </tmp/apps-bench-dpkg-cold)
fi
rm -f /tmp/apps-bench-*

packages=$("${dpkg[@]}" | wc -l)
found=$("${sondrel[@]}" | grep -m1 '"status"' | sed 's/.*"status": "\(.*\)".*/\1/')
printf 'installed packages: %s; sondrel: %s\n' "$packages" "$found"
printf '%-22s %10s %10s %10s\n' "" "warm wall" "warm cpu" "cold wall"
printf '%-22s %10s %10s %10s\n' "sondrel-cli apps" "$warm_s" "$cpu_s" "$cold_s"
printf '%-22s %10s %10s %10s\n' "dpkg-query -W" "$warm_d" "$cpu_d" "$cold_d"
printf 'ratio sondrel / dpkg-query (warm wall): %.2f, (warm cpu): %.2f\n' \
  "$(echo "$warm_s / $warm_d" | bc -l)" "$(echo "$cpu_s / ($cpu_d + 0.001)" | bc -l)"
if [ "$cold_s" != n/a ]; then
  printf 'ratio sondrel / dpkg-query (cold): %.2f\n' "$(echo "$cold_s / $cold_d" | bc -l)"
fi
