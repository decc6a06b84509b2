# SPDX-License-Identifier: GPL-3.0-or-later
# shellcheck shell=bash
#
# Sourced by the scripts beside it: running programs under wine, without a display, where nothing of
# the user's is in reach.

# missing WHAT: ends the script with 77, which ctest reports as skipped; with TESSERA_REQUIRE_WINDOWS
# that is a failure.
missing() {
    echo "$*"
    [ -z "${TESSERA_REQUIRE_WINDOWS:-}" ] || exit 1
    exit 77
}

need_tools() {
    local tool
    for tool in x86_64-w64-mingw32-g++-posix wine makensis; do
        command -v "$tool" >/dev/null ||
            missing "$tool is not installed: ./test --windows installs the Windows tools"
    done
}

# need_product WORK: ends the script where build_product.sh had nothing to build with.
need_product() {
    need_tools
    [ -e "$1/product" ] || {
        echo "skipped: nothing is built for Windows, see the test windows.product"
        exit 77
    }
}

# use_prefix FOLDER: all that follows runs in that wine prefix, which is made if it is not there.
use_prefix() {
    mkdir -p "$1/home"
    export WINEPREFIX=$1/prefix HOME=$1/home WINEDEBUG=-all
    export WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe="
    unset DISPLAY WAYLAND_DISPLAY WINEPATH
    # A complaint about syswow64 is harmless, no 32-bit part is installed.
    [ -d "$WINEPREFIX/drive_c" ] || wine wineboot -i </dev/null >"$1/wineboot.log" 2>&1
}

# The folder of the user's documents in the prefix.
documents() {
    echo "$WINEPREFIX/drive_c/users/$(id -un)/Documents"
}

# under_wine LOG PROGRAM [ARGUMENT...]: runs it and returns its status; what it prints goes to LOG.
# Through a file, since a cold wine server holds a pipe open for seconds.
under_wine() {
    local log=$1 status=0
    shift
    wine "$@" </dev/null >"$log.crlf" 2>&1 || status=$?
    # What wine itself has to say of the disk of this system is not the program's.
    tr -d '\r' <"$log.crlf" | sed '/^wine: Read access denied for device/d' >"$log"
    rm "$log.crlf"
    return $status
}
