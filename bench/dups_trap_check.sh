#!/usr/bin/env bash
# The verify step seen from outside: copies of the set's outside-the-samples trap pairs (same
# size, same three samples, different bytes elsewhere, so the sampled digest groups them) and of
# one true duplicate pair go into a throwaway folder of a throwaway home, and
# `sondrel-cli dups trash --yes FOLDER` runs there. The true copy must be moved; every trap copy
# must be refused as "differs from the kept copy", and the command must exit 1.
#
# Usage: bench/dups_trap_check.sh CLI SET_DIR [GROUPS_JSON]
#   CLI          the sondrel-cli binary
#   SET_DIR      a set made by sondrel-bench-dup_gen (its traps are Documents/traps/trap-*.bin)
#   GROUPS_JSON  `CLI --json dups SET_DIR` output to pick the true pair from (made when absent)
# Prints what it copied, the command's output and refusals, and its exit status; exits 0 when
# the outcome is the expected one, 1 otherwise. Nothing outside the throwaway folder is touched.
set -euo pipefail

cli=$1
set_dir=$2
groups_json=${3:-}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
home=$work/home
folder=$home/trap-check
mkdir -p "$folder"

shopt -s nullglob
traps=("$set_dir"/Documents/traps/trap-outside-*-[ab].bin)
shopt -u nullglob
if [ ${#traps[@]} -eq 0 ]; then
  echo "trap check: no outside-the-samples trap pair in $set_dir" >&2
  exit 1
fi
cp -p "${traps[@]}" "$folder"/

if [ -z "$groups_json" ]; then
  groups_json=$work/groups.json
  "$cli" --json dups "$set_dir" >"$groups_json"
fi
# The smallest group that is no trap: two of its copies, oldest first.
mapfile -t pair < <(python3 - "$groups_json" <<'EOF'
import json, sys
groups = [g for g in json.load(open(sys.argv[1], encoding="utf-8", errors="surrogateescape"))["groups"]
          if not any("/traps/" in f["path"] for f in g["files"])]
if groups:
    files = sorted(min(groups, key=lambda g: g["size"])["files"], key=lambda f: f["modified"])
    for f in files[:2]:
        print(f["path"])
EOF
)
copied=$((${#traps[@]}))
for i in "${!pair[@]}"; do
  cp -p "${pair[$i]}" "$folder/true-copy-$i-$(basename "${pair[$i]}")"
  copied=$((copied + 1))
done

echo
echo "trap check: ${#traps[@]} outside-the-samples trap files and ${#pair[@]} copies of one" \
  "true duplicate set, $copied files in a throwaway folder:"
echo "  HOME=$home sondrel-cli dups trash --yes $folder"
status=0
HOME=$home XDG_DATA_HOME=$home/.local/share "$cli" dups trash --yes "$folder" \
  >"$work/out" 2>"$work/err" || status=$?
sed 's/^/  /' "$work/out"
refused=$(grep -c "differs from the kept copy" "$work/err" || true)
grep "differs from the kept copy" "$work/err" | sed "s|$folder/||; s/^/  /" || true
grep -v "differs from the kept copy" "$work/err" | sed 's/^/  other: /' || true
trashed=$(find "$home/.local/share/Trash/files" -mindepth 1 -maxdepth 1 2>/dev/null | wc -l)
expected_refusals=$((${#traps[@]} / 2))
expected_moves=$((${#pair[@]} > 1 ? 1 : 0))
echo "  exit status $status; $refused refused as differing (expected $expected_refusals);" \
  "$trashed in the Trash (expected $expected_moves)"
if [ "$status" -eq 1 ] && [ "$refused" -eq "$expected_refusals" ] &&
  [ "$trashed" -eq "$expected_moves" ]; then
  echo "  verify step: every trap copy refused, the true copy moved"
else
  echo "  verify step: UNEXPECTED outcome"
  exit 1
fi
