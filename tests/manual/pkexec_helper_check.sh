#!/usr/bin/env bash
# Drives sondrel-helper through the real pkexec and polkitd, as an ordinary user, and checks that
# the "trash" verb moves a root-owned item out of that user's home into the user's own Trash and
# gives it back to them, that "remove" removes, that an injection-like name acts literally and
# that a path outside the home is refused even under pkexec.
#
# Not part of the suite: it changes the machine while it runs (a throwaway user, the installed
# helper and its policy under /usr/local and /usr/share, a polkit rule granting that user the
# helper's action without a password so no agent is needed) and undoes all of it at the end.
# Run as root: tests/manual/pkexec_helper_check.sh BUILD_DIR
set -euo pipefail
build=${1:?usage: pkexec_helper_check.sh BUILD_DIR}
[[ $(id -u) == 0 ]] || { echo "run as root"; exit 2; }
user=sondrel-pk-check
home=/home/$user
helper=/usr/local/libexec/sondrel/sondrel-helper
policy=/usr/share/polkit-1/actions/org.sondrel.helper.policy
rule=/etc/polkit-1/rules.d/49-sondrel-pk-check.rules
started_bus=0
polkitd_pid=

cleanup() {
  [[ -n $polkitd_pid ]] && kill "$polkitd_pid" 2>/dev/null || true
  if [[ $started_bus == 1 && -f /run/dbus/pid ]]; then kill "$(cat /run/dbus/pid)" 2>/dev/null || true; rm -f /run/dbus/pid; fi
  rm -f "$rule" "$policy" "$helper"
  rmdir "$(dirname "$helper")" 2>/dev/null || true
  userdel -r "$user" >/dev/null 2>&1 || true
}
trap cleanup EXIT

useradd -m -s /bin/bash "$user"
install -D -m 0755 "$build/helper/sondrel-helper" "$helper"
sed "s|<annotate key=\"org.freedesktop.policykit.exec.path\">[^<]*<|<annotate key=\"org.freedesktop.policykit.exec.path\">$helper<|" \
  "$build/helper/org.sondrel.helper.policy" > "$policy"
cat > "$rule" <<RULE
polkit.addRule(function(action, subject) {
    if (action.id == "org.sondrel.helper.remove" && subject.user == "$user") {
        return polkit.Result.YES;
    }
});
RULE

if ! dbus-send --system --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.GetId >/dev/null 2>&1; then
  mkdir -p /run/dbus
  dbus-daemon --system --fork
  started_bus=1
fi
if ! busctl --system status org.freedesktop.PolicyKit1 >/dev/null 2>&1; then
  /usr/lib/polkit-1/polkitd --no-debug >/dev/null 2>&1 &
  polkitd_pid=$!
  sleep 2
fi

# Items the user cannot remove alone: a root-owned folder with a root-owned file in their home.
mkdir -p "$home/locked"
echo data > "$home/locked/report.txt"
touch "$home/locked/\$(touch pwned)"
echo gone > "$home/locked/old.log"
chown root:root "$home/locked" "$home/locked"/*
chmod 0755 "$home/locked"

# Roots then paths, each tagged and NUL-terminated.
request() { local verb=$1; shift; { printf 'R%s\0' "$home"; for p in "$@"; do printf 'P%s\0' "$p"; done; } |
  su -s /bin/sh "$user" -c "cd ~ && pkexec $helper $verb"; }

echo "--- trash"
request trash "$home/locked/report.txt" "$home/locked/\$(touch pwned)"
echo "--- remove"
request remove "$home/locked/old.log"
echo "--- outside the home (must fail)"
request trash /etc/hostname || true

fail=0
check() { if eval "$2"; then echo "ok: $1"; else echo "FAILED: $1"; fail=1; fi; }
trash=$home/.local/share/Trash
check "report.txt left its folder" "[[ ! -e '$home/locked/report.txt' ]]"
check "report.txt is in the user's Trash" "[[ -f '$trash/files/report.txt' ]]"
check "the trashed file belongs to the user" "[[ \$(stat -c %U '$trash/files/report.txt') == '$user' ]]"
check "its .trashinfo names the original path" "grep -qx 'Path=$home/locked/report.txt' '$trash/info/report.txt.trashinfo'"
check "the .trashinfo belongs to the user" "[[ \$(stat -c %U '$trash/info/report.txt.trashinfo') == '$user' ]]"
check "the injection-like name was trashed literally" "[[ -f '$trash/files/\$(touch pwned)' ]]"
check "nothing was executed" "[[ ! -e '$home/pwned' && ! -e /root/pwned && ! -e /pwned ]]"
for folder in "$home/.local" "$home/.local/share" "$trash" "$trash/files" "$trash/info"; do
  check "$folder belongs to the user" "[[ \$(stat -c %U '$folder') == '$user' ]]"
done
check "remove removed old.log" "[[ ! -e '$home/locked/old.log' ]]"
check "/etc/hostname untouched" "[[ -f /etc/hostname ]]"
if command -v gio >/dev/null; then
  listed=$(su -s /bin/sh "$user" -c "dbus-run-session -- gio list -a trash::orig-path trash://" 2>/dev/null || true)
  echo "$listed"
  check "gio lists report.txt with its original path" "grep -q 'trash::orig-path=$home/locked/report.txt' <<<\"\$listed\""
fi

# Without the rule the action needs an administrator's password, and with no agent to ask for it
# pkexec gives up: the client reads exit 126/127 as "cancelled" and nothing may be touched.
rm -f "$rule"
sleep 2
echo kept > "$home/locked/kept.txt"
chown root:root "$home/locked/kept.txt"
status=0
request trash "$home/locked/kept.txt" || status=$?
check "without authorisation pkexec exits 126 or 127 (got $status)" "[[ $status == 126 || $status == 127 ]]"
check "without authorisation nothing moved" "[[ -f '$home/locked/kept.txt' ]]"
exit $fail
