#!/usr/bin/env bash
# Runs the installed package's administrator step for real: an ordinary user's sondrel-cli meets
# items in their home that only root may move, pkexec starts /usr/libexec/sondrel/sondrel-helper
# for them, and the helper
#   - removes a root-owned cache folder that `junk clean` chose (the junk cleaner's last step), and
#   - moves a root-owned leftover of a removed application that `care clean` chose into the
#     user's own Trash and gives it back to them (the uninstaller's last step).
#
# It needs the system bus and polkitd; it starts them when they are not running. A throwaway
# user and a polkit rule granting that user the helper's action (no password, so no agent is
# needed) exist only while it runs; everything it started or made is undone on exit.
# Exit status: 0 passed, 1 failed, 77 skipped (this environment cannot run setuid programs or
# polkitd; the reason is printed).
# Usage (as root, with the sondrel package installed): tests/package/admin_step_check.sh
set -euo pipefail
export LC_ALL=C.UTF-8
helper=/usr/libexec/sondrel/sondrel-helper
action=org.sondrel.helper.remove
user=sondrel-pkg-check
rule=/etc/polkit-1/rules.d/49-sondrel-pkg-check.rules
polkitd=/usr/lib/polkit-1/polkitd

skip() { echo "admin_step_check: SKIPPED: $*"; exit 77; }
fail() { echo "admin_step_check: FAILED: $*" >&2; exit 1; }
ok() { echo "ok: $*"; }

[[ $(id -u) == 0 ]] || { echo "admin_step_check: run as root" >&2; exit 2; }
[[ -x /usr/bin/sondrel-cli && -x $helper ]] || fail "the sondrel package is not installed"

# Where setuid programs cannot gain root, pkexec cannot work at all.
[[ -u /usr/bin/pkexec ]] || skip "/usr/bin/pkexec is not setuid root here"
grep -q '^NoNewPrivs:[[:space:]]*1' /proc/self/status &&
  skip "this process runs with no_new_privs, so setuid programs (pkexec) cannot gain root"
mount_options=$(findmnt -no OPTIONS -T /usr/bin/pkexec 2>/dev/null || true)
[[ ,$mount_options, == *,nosuid,* ]] &&
  skip "/usr/bin is mounted nosuid, so pkexec cannot gain root"
for tool in dbus-send pkcheck runuser useradd userdel; do
  command -v "$tool" >/dev/null || skip "$tool is not installed"
done
[[ -x $polkitd ]] || skip "$polkitd is not installed"

work=$(mktemp -d)
bus_pid=
polkitd_pid=
cleanup() {
  set +e
  if [[ -n $polkitd_pid ]]; then
    kill "$polkitd_pid" 2>/dev/null
    wait "$polkitd_pid" 2>/dev/null
  fi
  if [[ -n $bus_pid ]]; then
    kill "$bus_pid" 2>/dev/null
    rm -f /run/dbus/pid /run/dbus/system_bus_socket
  fi
  rm -f "$rule"
  userdel -r -f "$user" >/dev/null 2>&1
  rm -rf "$work"
}
trap cleanup EXIT

# A leftover of an interrupted run goes first.
userdel -r -f "$user" >/dev/null 2>&1 || true
useradd -m -s /bin/sh "$user"
home=$(getent passwd "$user" | cut -d: -f6)
mkdir -p "$(dirname "$rule")"
cat >"$rule" <<RULE
polkit.addRule(function(action, subject) {
    if (action.id == "$action" && subject.user == "$user") {
        return polkit.Result.YES;
    }
});
RULE
chmod 0644 "$rule"

# The system bus and polkitd, started here only when they are not running.
bus_call() { dbus-send --system --print-reply --dest=org.freedesktop.DBus / "$@" 2>/dev/null; }
wait_for() { # SECONDS COMMAND...: true as soon as COMMAND succeeds
  local tries=$(($1 * 10))
  shift
  while ((tries-- > 0)); do "$@" && return 0; sleep 0.1; done
  return 1
}
bus_up() { bus_call org.freedesktop.DBus.GetId >/dev/null; }
polkit_up() {
  local reply
  reply=$(bus_call org.freedesktop.DBus.NameHasOwner string:org.freedesktop.PolicyKit1) &&
    [[ $reply == *"boolean true"* ]]
}
if ! bus_up; then
  command -v dbus-daemon >/dev/null ||
    skip "no system bus is running and dbus-daemon is not installed"
  mkdir -p /run/dbus
  rm -f /run/dbus/pid # left by a bus that is no longer running
  bus_pid=$(dbus-daemon --system --fork --print-pid 2>"$work/bus.log") ||
    skip "dbus-daemon --system does not start here: $(cat "$work/bus.log")"
  wait_for 5 bus_up || skip "the system bus started but does not answer"
fi
if ! polkit_up; then
  "$polkitd" --no-debug >"$work/polkitd.log" 2>&1 &
  polkitd_pid=$!
  if ! wait_for 10 polkit_up; then
    cat "$work/polkitd.log" >&2
    skip "polkitd does not start here"
  fi
fi
# The rule applies once polkitd has read it (a polkitd that was running rereads it shortly).
authorized() {
  runuser -u "$user" -- sh -c "exec pkcheck --action-id $action --process \$\$" >/dev/null 2>&1
}
wait_for 10 authorized || fail "polkitd does not grant $action to $user with the rule $rule"
ok "polkitd grants $action to $user"

# sondrel-cli as that user would run it from a login shell: their home, no inherited variables.
as_user() {
  (cd "$home" && runuser -u "$user" -- env -i HOME="$home" USER="$user" LOGNAME="$user" \
    PATH=/usr/bin:/bin LC_ALL=C.UTF-8 /usr/bin/sondrel-cli "$@")
}
owner() { stat -c %U "$1"; }

# A root-owned cache folder above the junk cleaner's 10 MiB threshold: the user can neither
# move nor empty it, so the clean ends at the helper, which removes it.
locked=$home/.cache/zqxjkv-locked
install -d -o "$user" -g "$user" "$home/.cache"
install -d -m 0755 "$locked"
head -c 11M /dev/urandom >"$locked/blob" # random: a compressing file system keeps its size
listed=$(as_user junk) || fail "sondrel-cli junk failed"
grep -qF "zqxjkv-locked  (admin)" <<<"$listed" ||
  fail "sondrel-cli junk does not list $locked as needing an administrator"
echo "--- sondrel-cli junk clean --group user_caches --yes"
status=0
as_user junk clean --group user_caches --yes || status=$?
[[ $status == 0 ]] || fail "junk clean exited with $status"
[[ ! -e $locked ]] || fail "$locked is still there after junk clean"
ok "junk clean removed the root-owned $locked through the helper"

# A root-owned leftover of an application that is not installed, quiet for 40 days: Smart
# Care's clean trashes it through the uninstaller's chain, whose last step is the helper's move
# into the user's Trash.
orphan=$home/.config/zqxjkv-vanished
install -d -o "$user" -g "$user" "$home/.config"
install -d -m 0755 "$orphan"
head -c 200K /dev/urandom >"$orphan/state.db"
touch -d '40 days ago' "$orphan/state.db" "$orphan"
listed=$(as_user apps orphans) || fail "sondrel-cli apps orphans failed"
grep -qF "$orphan" <<<"$listed" || fail "sondrel-cli apps orphans does not list $orphan"
echo "--- sondrel-cli care clean --skip developer --skip caches --skip logs --skip trash --yes"
status=0
as_user care clean --skip developer --skip caches --skip logs --skip trash --yes || status=$?
[[ $status == 0 ]] || fail "care clean exited with $status"
trash=$home/.local/share/Trash
[[ ! -e $orphan ]] || fail "$orphan is still there after care clean"
[[ -f $trash/files/zqxjkv-vanished/state.db ]] || fail "$orphan is not in $trash/files"
grep -qx "Path=$orphan" "$trash/info/zqxjkv-vanished.trashinfo" ||
  fail "its .trashinfo does not name $orphan"
for path in "$trash" "$trash/files" "$trash/info" "$trash/files/zqxjkv-vanished" \
  "$trash/files/zqxjkv-vanished/state.db" "$trash/info/zqxjkv-vanished.trashinfo"; do
  [[ $(owner "$path") == "$user" ]] || fail "$path belongs to $(owner "$path"), not $user"
done
ok "care clean moved the root-owned $orphan through the helper into $user's Trash, owned by $user"
echo "admin_step_check: the installed helper ran through pkexec and polkitd"
