#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# try_installer.sh WORK: installs without windows, uses what was installed, and removes it again.
set -euo pipefail
. "$(dirname "$0")/wine.sh"
work=$1
need_product "$work"
use_prefix "$work/wine-installer" # without the settings of the tests
setup=$(realpath "$work"/corvane-tessera-*-setup.exe)
user=$WINEPREFIX/drive_c/users/$(id -un)
folder=$user/AppData/Local/Programs/Corvane
entry="$user/AppData/Roaming/Microsoft/Windows/Start Menu/Programs/Corvane.lnk"

fail() {
    echo "FAILED: $*"
    exit 1
}
registry() {
    local action=$1 key=$2
    under_wine "$work/registry.log" reg "$action" "HKCU\\Software\\$key" "${@:3}"
}
# has KEY TEXT: a value of the key holds the text.
has() {
    registry query "$1" && grep -qF -- "$2" "$work/registry.log" ||
        fail "$1 in the registry: $(cat "$work/registry.log")"
}
# eventually COMMAND...: waits until it succeeds, two minutes at most.
eventually() {
    local start=$SECONDS
    until "$@"; do
        [ $((SECONDS - start)) -lt 120 ] || fail "it never came true: $*"
        sleep 0.2
    done
}
is_gone() { [ ! -e "$1" ]; }

# A type of files that belongs to another program stays with it.
registry add 'Classes\.prt' /ve /d Other.prt /f
cd "$work"
under_wine setup.log "$setup" /S || fail "the installer: $(cat setup.log)"
[ -e "$entry" ] || fail "there is no entry in the start menu"
for file in bin/Corvane.exe lib/corvane/plugins/tessera.dll uninstall.exe; do
    [ -e "$folder/$file" ] || fail "$file is not installed"
done
diff -r "$folder" "$(echo "$work"/corvane-tessera-*/)" | grep -v 'Only in .*: uninstall.exe$' &&
    fail "what is installed is not what was packed"
program="C:\\users\\$(id -un)\\AppData\\Local\\Programs\\Corvane\\bin\\Corvane.exe"
for ending in vmr vtc voi; do
    has "Classes\\.$ending" "Corvane.$ending"
    has "Classes\\Corvane.$ending\\shell\\open\\command" "\"$program\" \"%1\""
done
has 'Classes\.prt' Other.prt
has 'Microsoft\Windows\CurrentVersion\Uninstall\Corvane' 'uninstall.exe" /S'
under_wine version.log "$program" --version || fail "the program: $(cat version.log)"
echo "installed: $(cat version.log)"

# What someone has put there stays.
touch "$folder/lib/corvane/plugins/another.dll"
under_wine uninstall.log "$folder/uninstall.exe" /S || fail "removing it: $(cat uninstall.log)"
eventually is_gone "$folder/uninstall.exe"
eventually is_gone "$entry"
[ "$(cd "$folder" && find . -type f)" = ./lib/corvane/plugins/another.dll ] ||
    fail "left behind: $(find "$folder")"
rm -r "$folder"
removed_from_registry() { ! registry query "$1"; }
eventually removed_from_registry 'Microsoft\Windows\CurrentVersion\Uninstall\Corvane'
for key in 'Classes\.vmr' 'Classes\Corvane.prt' 'Corvane'; do
    removed_from_registry "$key" || fail "left in the registry: $(cat "$work/registry.log")"
done
has 'Classes\.prt' Other.prt
registry delete 'Classes\.prt' /f
echo "removed without a trace"
