#!/usr/bin/env bash
# Uninstalls a real Debian package end to end: builds a tiny .deb (a program and its desktop
# entry) with dpkg-deb, installs it, checks that `sondrel-cli apps` finds it with its
# leftovers, uninstalls it as an ordinary user through PackageKit (packagekitd on the system bus,
# polkit granting that user the removal without a password so no agent is needed), and checks
# that dpkg no longer lists it and its leftovers are in the user's Trash.
#
# Not part of the suite: it changes the machine while it runs (a throwaway user and package, a
# polkit rule, maybe a system bus, polkitd and packagekitd it starts) and undoes all of it.
# Run as root: tests/manual/apps_uninstall_check.sh BUILD_DIR
set -euo pipefail
build=${1:?usage: apps_uninstall_check.sh BUILD_DIR}
[[ $(id -u) == 0 ]] || { echo "run as root"; exit 2; }
cli=$(readlink -f "$build/cli/sondrel-cli")
user=sondrel-apps-check
home=/home/$user
package=sondrel-check-app
rule=/etc/polkit-1/rules.d/49-sondrel-apps-check.rules
scratch=$(mktemp -d)
started_bus=0
polkitd_pid=
packagekitd_pid=

cleanup() {
  [[ -n $packagekitd_pid ]] && kill "$packagekitd_pid" 2>/dev/null || true
  [[ -n $polkitd_pid ]] && kill "$polkitd_pid" 2>/dev/null || true
  if [[ $started_bus == 1 && -f /run/dbus/pid ]]; then kill "$(cat /run/dbus/pid)" 2>/dev/null || true; rm -f /run/dbus/pid; fi
  dpkg -r "$package" >/dev/null 2>&1 || true
  rm -rf "$scratch" "$rule"
  userdel -r "$user" >/dev/null 2>&1 || true
}
trap cleanup EXIT

# The package: a copy of /bin/true as its program and a desktop entry naming it.
root=$scratch/pkg
mkdir -p "$root/DEBIAN" "$root/usr/bin" "$root/usr/share/applications"
cp /bin/true "$root/usr/bin/$package"
cat > "$root/usr/share/applications/$package.desktop" <<ENTRY
[Desktop Entry]
Type=Application
Name=Sondrel Check App
Exec=$package
Icon=$package
ENTRY
cat > "$root/DEBIAN/control" <<CONTROL
Package: $package
Version: 1.0
Architecture: all
Maintainer: Sondrel checks <checks@localhost>
Description: throwaway package for the uninstaller check
CONTROL
dpkg-deb --build --root-owner-group "$root" "$scratch/$package.deb" >/dev/null
dpkg -i "$scratch/$package.deb" >/dev/null

useradd -m -s /bin/bash "$user"
for dir in .config/$package .cache/$package; do
  mkdir -p "$home/$dir"
  head -c 20000 /dev/urandom > "$home/$dir/data"
done
chown -R "$user:$user" "$home"

cat > "$rule" <<RULE
polkit.addRule(function(action, subject) {
    if (action.id.indexOf("org.freedesktop.packagekit.") == 0 && subject.user == "$user") {
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
if ! busctl --system status org.freedesktop.PackageKit >/dev/null 2>&1; then
  /usr/libexec/packagekitd >/dev/null 2>&1 &
  packagekitd_pid=$!
  sleep 3
fi

as_user() { su -s /bin/sh "$user" -c "cd ~ && $*"; }
fail=0
check() { if eval "$2"; then echo "ok: $1"; else echo "FAILED: $1"; fail=1; fi; }

listed=$(as_user "'$cli' --json apps")
check "sondrel-cli apps lists the package's application" "grep -q '\"identifier\": \"$package\"' <<<\"\$listed\""
check "it is matched to its Debian package" "grep -q '\"package\": \"$package\"' <<<\"\$listed\""
check "its settings are a leftover" "grep -q '$home/.config/$package' <<<\"\$listed\""

echo "--- uninstall"
as_user "'$cli' apps uninstall '$package' --yes" || true
check "dpkg no longer lists the package" "! dpkg-query -W -f '\${Status}' '$package' 2>/dev/null | grep -q 'ok installed'"
check "the program is gone" "[[ ! -e /usr/bin/$package ]]"
trash=$home/.local/share/Trash
check "the settings are in the user's Trash" "[[ -f '$trash/files/$package/data' && ! -e '$home/.config/$package' ]]"
check "the cache is in the user's Trash" "[[ ! -e '$home/.cache/$package' ]] && ls '$trash/files' | grep -q '^$package'"
exit $fail
