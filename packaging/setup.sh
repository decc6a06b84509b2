# SPDX-License-Identifier: GPL-3.0-or-later
# shellcheck shell=bash
#
# Sourced by ./run, ./test and .ci/run: installs the Debian packages that are missing.
# The list is the file `packages` at the root.

# package_names [GROUP...]: the packages without a group, and those of the groups named.
package_names() {
    local line group name wanted
    while read -r line; do
        line=${line%%#*}
        case $line in
        *:*)
            group=${line%%:*}
            name=${line#*:}
            for wanted in "$@"; do
                [ "$wanted" = "$group" ] && echo $name
            done
            ;;
        *) [ -n "${line// /}" ] && echo $line ;;
        esac
    done <"$(dirname "${BASH_SOURCE[0]}")/../packages"
    return 0
}

# How long to wait for another package manager, in seconds.
apt_patience=600

# apt_get ARGUMENT...: apt-get, as root or through sudo, once no other package manager is at work.
# The option makes it wait for dpkg; for its own lists and archives it would fail at once.
apt_get() {
    local as_root=(env DEBIAN_FRONTEND=noninteractive LC_ALL=C) until=$((SECONDS + apt_patience))
    local errors status
    [ "$(id -u)" -eq 0 ] || as_root=(sudo "${as_root[@]}")
    while true; do
        status=0
        { errors=$("${as_root[@]}" apt-get -o "DPkg::Lock::Timeout=$apt_patience" "$@" \
            2>&1 >&3); } 3>&1 || status=$?
        [[ $status -ne 0 && $errors == *"Could not get lock"* && $SECONDS -lt $until ]] || break
        echo "Another package manager is at work; waiting for it."
        sleep 5
    done
    [ -z "$errors" ] || echo "$errors" >&2
    return "$status"
}

# install_packages [GROUP...]: nothing when all are there; else apt-get, as root or through sudo.
install_packages() {
    local missing=() name
    for name in $(package_names "$@"); do
        dpkg-query -W -f='${Status}' "$name" 2>/dev/null | grep -q 'ok installed' ||
            missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing ${#missing[@]} Debian packages with what they need: ${missing[*]}"
    if ! { apt_get update -q &&
        apt_get install -q -y --no-install-recommends "${missing[@]}"; }; then
        echo "They could not be installed. Who looks after this machine can do so, once, by" >&2
        echo "apt-get install --no-install-recommends ${missing[*]}" >&2
        return 1
    fi
}

# build PRESET [OPTION...] [-- TARGET...]: configures with the options and builds the targets, or all,
# into build/PRESET.
build() {
    local preset=$1 options=()
    shift
    while [ $# -gt 0 ] && [ "$1" != -- ]; do
        options+=("$1")
        shift
    done
    # Equal sources in two checkouts share their compiler results, those with precompiled headers too.
    export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros
    mkdir -p build
    cmake --preset "$preset" "${options[@]}" >"build/configure-$preset.log" 2>&1 || {
        cat "build/configure-$preset.log"
        return 1
    }
    [ $# -eq 0 ] || set -- --target "${@:2}"
    cmake --build --preset "$preset" --parallel "$@"
}
