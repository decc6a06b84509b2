#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# A Slurm of this one machine, with everything that it writes in a folder of its own.
#
#   slurm.sh check         exit status 77 and a line when it cannot be had here
#   slurm.sh start FOLDER  returns when the machine takes jobs; FOLDER/slurm.conf is for the clients
#   slurm.sh node FOLDER   starts the daemon of the node again
#   slurm.sh stop FOLDER
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
action=$1
folder=${2:-}
export SLURM_CONF=$folder/slurm.conf
host=$(hostname -s)

# wait_until SECONDS COMMAND...
wait_until() {
    local until=$((SECONDS + $1))
    shift
    until "$@"; do
        if [ $SECONDS -ge $until ]; then
            echo "waited in vain for: $*" >&2
            tail -n 20 "$folder"/*.log >&2
            return 1
        fi
        sleep 0.1
    done
}

takes_jobs() {
    [[ $(sinfo --noheader --format=%T 2>/dev/null) =~ ^(idle|mixed|allocated)$ ]]
}

start_node() {
    setsid slurmd -f "$SLURM_CONF" -N "$host" </dev/null >/dev/null 2>&1
    wait_until 60 takes_jobs
}

stop_by() {
    [ ! -f "$1" ] || kill "$(cat "$1" 2>/dev/null)" 2>/dev/null || true
}

is_gone() {
    [ ! -f "$1" ] || ! kill -0 "$(cat "$1" 2>/dev/null)" 2>/dev/null
}

case $action in
check)
    for tool in slurmctld slurmd sbatch munged mungekey; do
        if ! PATH=$PATH:/usr/sbin command -v "$tool" >/dev/null; then
            echo "$tool is not installed: ./test --slurm installs Slurm"
            exit 77
        fi
    done
    if [ "$(id -u)" -ne 0 ]; then
        echo "the daemons of Slurm run for root only"
        exit 77
    fi
    ;;
start)
    mkdir -p "$folder/state" "$folder/spool"
    port=$((20000 + $$ % 20000))
    # A little below what there is, or the node does not count as whole.
    memory=$(($(awk '/MemTotal/ { print $2 }' /proc/meminfo) / 1024 - 200))
    sed -e "s|@HOST@|$host|g; s|@STATE@|$folder|g; s|@PORT@|$port|; s|@NODEPORT@|$((port + 1))|" \
        -e "s|@CPUS@|$(nproc)|; s|@MEMORY@|$memory|" "$here/slurm.conf" >"$SLURM_CONF"
    PATH=$PATH:/usr/sbin
    mungekey --create --keyfile="$folder/munge.key"
    munged --force --key-file="$folder/munge.key" --socket="$folder/munge.socket" \
        --pid-file="$folder/munged.pid" --log-file="$folder/munged.log" \
        --seed-file="$folder/munge.seed"
    setsid slurmctld -f "$SLURM_CONF" -c </dev/null >/dev/null 2>&1
    start_node
    ;;
node) PATH=$PATH:/usr/sbin start_node ;;
stop)
    scancel --user=root 2>/dev/null || true
    for daemon in slurmd slurmctld munged; do
        stop_by "$folder/$daemon.pid"
        wait_until 30 is_gone "$folder/$daemon.pid"
    done
    ;;
esac
