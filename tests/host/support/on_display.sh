#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# on_display.sh SIZE PROGRAM ARGUMENT...: runs a test program on a display of its own with a window
# manager, such as on_display.sh 1600x1000 test_guided_tour.
set -euo pipefail
size=$1
shift
for tool in Xvfb openbox; do
    if ! command -v "$tool" >/dev/null; then
        echo "skipped: there is no $tool"
        exit 77
    fi
done
work=$(mktemp -d)
processes=()
clean_up() {
    for process in "${processes[@]}"; do
        kill "$process" 2>/dev/null || true
        wait "$process" 2>/dev/null || true
    done
    rm -rf "$work"
}
trap clean_up EXIT
mkfifo "$work/number"
Xvfb -displayfd 3 -screen 0 "${size}x24" -nolisten tcp 3>"$work/number" 2>"$work/xvfb" &
processes+=($!)
read -r number <"$work/number"
export DISPLAY=:$number QT_QPA_PLATFORM=xcb HOME=$work
openbox --sm-disable >"$work/openbox" 2>&1 &
processes+=($!)
# It is there when it has put its name on the root window.
for ((look = 0; look < 200; ++look)); do
    xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id' && break
    sleep 0.05
done
xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id' || {
    echo "openbox did not start: $(cat "$work/openbox" "$work/xvfb")"
    exit 1
}
"$@"
