#!/usr/bin/env bash
# Installs a built sondrel .deb on this machine with apt-get, checks what the installed package
# provides (programs, helper and polkit policy, desktop entry, AppStream metadata, icons, manual
# page, bash completion), starts the desktop program offscreen (a QML module the package does
# not depend on shows there), runs the administrator step through pkexec and polkitd as an
# ordinary user (admin_step_check.sh), then removes and purges the package and checks that
# nothing of it is left. lintian checks the package file first and must report no errors.
#
# Changes the machine's installed packages, so it runs in CI (as root), not in the suite.
# It refuses to run when sondrel is already installed, and purges the package if a check fails.
# Usage: tests/package/install_remove_check.sh path/to/sondrel_VERSION_ARCH.deb
set -euo pipefail
deb=$(realpath "${1:?usage: install_remove_check.sh path/to/sondrel_VERSION_ARCH.deb}")
here=$(dirname "$(realpath "${BASH_SOURCE[0]}")")
[[ $(id -u) == 0 ]] || { echo "install_remove_check: run as root" >&2; exit 2; }
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8

step() { echo "== $*"; }
fail() { echo "install_remove_check: FAILED: $*" >&2; exit 1; }
installed() { [[ $(dpkg-query -W -f='${db:Status-Abbrev}' sondrel 2>/dev/null) == ii* ]]; }
apt_install() {
  apt-get install -y -qq "$@" >/dev/null 2>&1 || { apt-get update -qq && apt-get install -y -qq "$@" >/dev/null; }
}

if dpkg-query -W sondrel >/dev/null 2>&1 && [[ $(dpkg-query -W -f='${db:Status-Abbrev}' sondrel) != un* ]]; then
  echo "install_remove_check: sondrel is already installed here; remove it first" >&2
  exit 2
fi
trap 'installed && apt-get purge -y -qq sondrel >/dev/null 2>&1 || true' EXIT

version=$(dpkg-deb -f "$deb" Version)
helper=/usr/libexec/sondrel/sondrel-helper
policy=/usr/share/polkit-1/actions/org.sondrel.helper.policy

step "lintian $(basename "$deb")"
command -v lintian >/dev/null || apt_install --no-install-recommends lintian
# Errors fail the check; warnings and notes are printed for the record.
lintian --fail-on error --display-info "$deb" || fail "lintian reports errors"

step "apt-get install $deb"
apt_install "$deb"
installed || fail "sondrel is not installed after apt-get install"

step "programs"
[[ $(command -v sondrel-cli) == /usr/bin/sondrel-cli ]] || fail "sondrel-cli is not /usr/bin/sondrel-cli"
[[ $(/usr/bin/sondrel-cli --version) == "sondrel-cli $version" ]] || fail "sondrel-cli --version is not $version"
[[ -x /usr/bin/sondrel ]] || fail "/usr/bin/sondrel missing"
QT_QPA_PLATFORM=offscreen /usr/bin/sondrel --version 2>/dev/null | grep -qx "Sondrel $version" ||
  fail "sondrel --version does not print $version"

step "desktop program starts offscreen"
# Main.qml and every page it names are compiled when the window loads: a missing QML module
# makes the program exit at once, a broken binding prints a QML warning. Still running after a
# few seconds with no such line means the window loaded. Its own home, so nothing is left.
gui=$(mktemp -d)
install -d -m 0700 "$gui/home" "$gui/runtime"
gui_status=0
env -i HOME="$gui/home" PATH=/usr/bin:/bin LC_ALL=C.UTF-8 XDG_RUNTIME_DIR="$gui/runtime" \
  QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software \
  timeout -k 3 5 /usr/bin/sondrel >"$gui/log" 2>&1 || gui_status=$?
gui_log=$(cat "$gui/log")
rm -rf "$gui"
[[ -z $gui_log ]] || printf '%s\n' "$gui_log"
[[ $gui_status == 124 ]] ||
  fail "sondrel ended by itself (status $gui_status) instead of showing its window"
if grep -qE 'is not installed|\.qml:[0-9]+|QQmlApplicationEngine failed|QQmlComponent' <<<"$gui_log"; then
  fail "sondrel printed QML errors (a missing runtime dependency?)"
fi

step "helper and polkit action"
pkexec --help >/dev/null 2>&1 || fail "pkexec --help fails"
[[ $(stat -c '%U:%G %a' "$helper") == "root:root 755" ]] || fail "$helper is not root:root 0755"
grep -q "<annotate key=\"org.freedesktop.policykit.exec.path\">$helper</annotate>" "$policy" ||
  fail "$policy does not name $helper"
[[ $(stat -c '%U %a' "$policy") == "root 644" ]] || fail "$policy is not root 0644"

step "desktop entry, AppStream metadata, icons"
desktop-file-validate /usr/share/applications/sondrel.desktop || fail "desktop-file-validate"
appstreamcli validate --no-net /usr/share/metainfo/sondrel.metainfo.xml || fail "appstreamcli validate"
for size in 16 32 48 64 128 256; do
  [[ -f /usr/share/icons/hicolor/${size}x${size}/apps/sondrel.png ]] || fail "no ${size}px icon"
done
[[ -f /usr/share/icons/hicolor/scalable/apps/sondrel.svg ]] || fail "no scalable icon"

step "manual pages"
[[ $(man -w sondrel) == /usr/share/man/man1/sondrel.1.gz ]] || fail "no sondrel manual page"
[[ $(man -w sondrel-cli) == /usr/share/man/man1/sondrel-cli.1.gz ]] ||
  fail "man -w sondrel-cli finds no installed page (does dpkg exclude /usr/share/man here?)"
warnings=$(mktemp)
page=$(MANWIDTH=80 man --warnings sondrel-cli 2>"$warnings" | col -b) || fail "man sondrel-cli"
[[ ! -s $warnings ]] || { cat "$warnings" >&2; fail "man sondrel-cli prints warnings"; }
rm -f "$warnings"
for heading in NAME SYNOPSIS COMMANDS OPTIONS; do
  grep -qx "$heading" <<<"$page" || fail "the manual page has no $heading section"
done
grep -q -- "--version" <<<"$page" || fail "the manual page does not list --version"
# Every form of a command is there, the ones that remove things above all (spaces squeezed:
# justified lines have wider gaps, which col writes as tabs).
squeezed=$(tr -s '\t ' '  ' <<<"$page")
for form in "apps uninstall ID [--keep-leftovers] [--yes]" "junk clean [--group TYPE ...]" \
  "care clean [--skip" "dups trash [--keep newest|oldest] [--yes]"; do
  grep -qF -- "sondrel-cli $form" <<<"$squeezed" ||
    fail "the manual page does not show 'sondrel-cli $form'"
done

step "bash completion"
completion=/usr/share/bash-completion/completions/sondrel-cli
# Completes in a clean shell as bash-completion would: the command name, then the word list.
complete_words() {
  bash -c 'source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _sondrel_cli sondrel-cli; echo "${COMPREPLY[*]}"' \
    _ "$completion" "$@"
}
[[ $(complete_words sondrel-cli sca) == scan ]] || fail "completion of 'sca' is not scan"
[[ $(complete_words sondrel-cli scan --dep) == --depth ]] || fail "completion of 'scan --dep'"
[[ $(complete_words sondrel-cli --layout ma) == macos ]] || fail "completion of '--layout ma'"

step "administrator step through pkexec"
admin_status=0
"$here/admin_step_check.sh" || admin_status=$?
case $admin_status in
  0) ;;
  77) echo "install_remove_check: the administrator step was skipped (see above)" ;;
  *) fail "the administrator step" ;;
esac

# Every file and folder of the package, to look for after removal.
mapfile -t owned < <(dpkg -L sondrel)

step "apt-get remove sondrel"
apt-get remove -y -qq sondrel >/dev/null
[[ ! -e /usr/bin/sondrel && ! -e /usr/bin/sondrel-cli && ! -e $helper && ! -e $policy ]] ||
  fail "programs or the policy are left after apt-get remove"

step "apt-get purge sondrel"
# The package has no configuration files, so remove may already have forgotten it entirely;
# apt-get purge only knows it while dpkg keeps it as "removed, configuration left".
if [[ $(dpkg-query -W -f='${db:Status-Abbrev}' sondrel 2>/dev/null || true) == rc* ]]; then
  apt-get purge -y -qq sondrel >/dev/null
else
  dpkg --purge sondrel >/dev/null 2>&1
fi
[[ $(dpkg-query -W -f='${db:Status-Abbrev}' sondrel 2>/dev/null || true) == "" ||
   $(dpkg-query -W -f='${db:Status-Abbrev}' sondrel) == un* ]] || fail "dpkg still knows sondrel"
left=()
for path in "${owned[@]}"; do
  [[ $path == /. ]] && continue
  if [[ -d $path && ! -L $path ]]; then
    # A folder may stay only when another package owns it.
    dpkg -S "$path" >/dev/null 2>&1 || left+=("$path/")
  elif [[ -e $path || -L $path ]]; then
    left+=("$path")
  fi
done
[[ ${#left[@]} -eq 0 ]] || fail "left after purge: ${left[*]}"
echo "install_remove_check: sondrel $version installed, checked, removed and purged cleanly"
