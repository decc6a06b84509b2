#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# run.sh build BUILD_FOLDER           cross-builds the programs for Windows
# run.sh run BUILD_FOLDER PROGRAM     runs one of them under wine
# run.sh exports BUILD_FOLDER PROGRAM compares what it exports with exports.def beside it
# Exit status 77, which ctest reports as skipped, where the tools are missing, unless
# TESSERA_REQUIRE_WINDOWS is set.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
action=$1
folder=$2

for tool in x86_64-w64-mingw32-g++-posix wine; do
    if ! command -v "$tool" >/dev/null; then
        echo "$tool is not installed: ./test --windows installs the Windows tools"
        [ -n "${TESSERA_REQUIRE_WINDOWS:-}" ] && exit 1
        exit 77
    fi
done

export WINEPREFIX=$folder/prefix WINEDEBUG=-all WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe="
unset DISPLAY WAYLAND_DISPLAY

case $action in
build)
    cmake -G Ninja -S "$here/cross" -B "$folder" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$here/../../packaging/windows/toolchain.cmake"
    cmake --build "$folder"
    # Makes the prefix; a complaint about syswow64 is harmless, no 32-bit part is installed.
    [ -d "$WINEPREFIX/drive_c" ] || wine wineboot -i </dev/null >"$folder/wineboot.log" 2>&1
    ;;
run)
    # Output goes through a file: a cold wine server holds a pipe open for seconds.
    status=0
    cd "$folder"
    wine "$folder/$3" </dev/null >"$folder/$3.log" 2>&1 || status=$?
    tr -d '\r' <"$folder/$3.log"
    exit "$status"
    ;;
exports)
    # The table of exported names in the program: lines of "[number] name".
    exported=$(x86_64-w64-mingw32-objdump -p "$folder/$3" |
        sed -n '/Ordinal.Name Pointer. Table/,/^$/s/^[[:space:]]*\[ *[0-9]*\] //p' | sort)
    listed=$(sed '1d; s/ //g' "$(dirname "$folder/$3")/exports.def" | sort)
    if [ -z "$listed" ] || [ "$exported" != "$listed" ]; then
        echo "exported (<) differs from listed (>):"
        diff <(echo "$exported") <(echo "$listed")
        exit 1
    fi
    echo "$(echo "$exported" | wc -l) exports, as listed"
    ;;
esac
