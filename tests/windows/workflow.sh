#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# workflow.sh WORK RECORDINGS CORVANE COMPARE_PICTURES: the whole road of a real recording on Windows
# against the same road of CORVANE, the program of this system: import, compute with pictures, and the
# tour through every dialog, with the plugin's settings file, log and dumps.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
. "$here/wine.sh"
work=$1
recordings=$2/recordings
corvane=$(realpath "$3")
compare_pictures=$4
need_product "$work"
if [ ! -d "$recordings" ]; then
    echo "skipped: there are no recordings in $recordings"
    exit 77
fi
use_prefix "$work/wine"
windows_corvane=$(echo "$work"/corvane-tessera-*/bin/Corvane.exe)

fail() {
    echo "FAILED: $*"
    exit 1
}
road=$work/road
rm -rf "$road"
mkdir -p "$road/linux/home" "$road/windows"
cd "$road"

# both ARGUMENT...: runs the command on both systems, each in its own folder.
both() {
    (cd linux && HOME=$PWD/home "$corvane" "$@" >said.txt 2>&1) || fail "$*: $(cat linux/said.txt)"
    (cd windows && under_wine said.txt "$windows_corvane" "$@") ||
        fail "$* on Windows: $(cat windows/said.txt)"
    diff linux/said.txt windows/said.txt || fail "$1 says something else on Windows"
}
# same FILE...: are the same byte for byte.
same() {
    local file
    for file in "$@"; do
        cmp "linux/$file" "windows/$file"
    done
}

haxby=$recordings/haxby2001
"$here/make_atlas.py" "$haxby/mask_25mm_brain.nii.gz" atlas.nii
cp "$haxby/mask_25mm_brain.nii.gz" "$haxby/run001_bold_25mm.nii.gz" .
cp "$haxby/run001_events.tsv" events.tsv
both import --anatomy ../mask_25mm_brain.nii.gz --functional ../run001_bold_25mm.nii.gz \
    --atlas ../atlas.nii --labels ../atlas.nii.tsv --events ../events.tsv --name r --out data
same data/r.vmr data/r.vtc data/r.voi data/r.prt
echo "import: the four files are the same"

files=(--anatomy data/r.vmr --vtc data/r.vtc --voi data/r.voi)
both compute "${files[@]}" --use-protocol --plots --out protocol
both compute "${files[@]}" --measure partial-correlation --values positive --out partial
both graph partial/connectivity.csv --mst --out graph
for folder in protocol partial graph; do
    echo "$folder:"
    "$here/compare_tables.py" linux/$folder windows/$folder || fail "$folder differs"
done
"$compare_pictures" linux/protocol windows/protocol || fail "the pictures differ"

both connectome --bold ../run001_bold_25mm.nii.gz --atlas ../atlas.nii --labels ../atlas.nii.tsv \
    --mask ../mask_25mm_brain.nii.gz --events ../events.tsv --clean none --high-pass 0.01 \
    --measure pearson,partial --shrinkage ledoit-wolf --plots --out connectome
echo "connectome:"
"$here/compare_tables.py" linux/connectome windows/connectome || fail "connectome differs"
"$compare_pictures" linux/connectome windows/connectome || fail "the pictures of connectome differ"

# A study: made, computed in a process for each participant, and verified.
both example --study study --subjects 2
diff -r linux/study windows/study || fail "the example study differs"
both cohort study connectomes participant --task-id rest --nprocs 1 --clean 36P \
    --atlas study/atlas/tpl-MNI152NLin2009cAsym_res-2_atlas-Example38_dseg.nii.gz \
    --labels study/atlas/tpl-MNI152NLin2009cAsym_res-2_atlas-Example38_dseg.tsv
both cohort connectomes verify --all
both cohort connectomes status
echo "study:"
"$here/compare_tables.py" linux/connectomes windows/connectomes || fail "the study differs"
[ -s windows/connectomes/index.html ] || fail "the study has no page"

# settings HOME_DOCUMENTS FOLDER: the plugin's settings file, with the log and the dumps in FOLDER.
settings() {
    mkdir -p "$1/CVExtensions/Plugins_64" "$1/diagnostics"
    printf '[plugin]\nverbose_logging=true\nlog_dir=%s\n[nodalis]\ndump_all=true\ndump_output_dir=%s\n' \
        "$2" "$2" >"$1/CVExtensions/Plugins_64/tessera_plugin.ini"
}
rm -rf "$(documents)/diagnostics"
settings linux/home/Documents "$PWD/linux/home/Documents/diagnostics"
settings "$(documents)" "C:/users/$(id -un)/Documents/diagnostics"
# The tour neither goes by where the user's dialogs were last, here in a folder that is gone, nor leaves
# its own files in the user's list.
own='HKCU\Software\Corvane\Corvane'
dialogs='HKCU\Software\QtProject\OrganizationDefaults\FileDialog'
gone="C:/users/$(id -un)/Temp/.gone"
under_wine registry.txt reg add "$own" /v folder /d "$gone" /f || fail "$(cat registry.txt)"
under_wine registry.txt reg add "$dialogs" /v lastVisited /d "file:///$gone" /f
under_wine before.txt reg query "$own" || fail "$(cat before.txt)"
both tour --out tour
under_wine after.txt reg query "$own" || fail "$(cat after.txt)"
diff before.txt after.txt || fail "the tour changes the user's settings"
rm "$(documents)/CVExtensions/Plugins_64/tessera_plugin.ini"
# Whether names fit beside the matrix of the connectome window hangs on the last pixel of a font.
"$compare_pictures" linux/tour windows/tour connectome 0.06 || fail "the pictures of the tour differ"

# What the plugin wrote under the user's documents: names hold the time, lines paths.
mv "$(documents)/diagnostics" windows/diagnostics
mv linux/home/Documents/diagnostics linux/diagnostics
for system in linux windows; do
    mv $system/diagnostics/log_*.txt $system/log.txt
    mv $system/diagnostics/dump_* $system/dumps
    tr -d '\r' <$system/log.txt | sed -E 's#[^ "=]*/([A-Za-z0-9._-]+)#\1#g' >$system/log
done
[ "$(wc -l <linux/log)" -gt 20 ] || fail "the log has $(wc -l <linux/log) lines"
diff linux/log windows/log || fail "the log says something else on Windows"
echo "log: $(wc -l <windows/log) lines, as on this system; dumps:"
"$here/compare_tables.py" linux/dumps windows/dumps || fail "the dumps differ"
