#!/usr/bin/env bash
# Runs Slurm on this machine alone: one node, over the loopback, everything of it in FOLDER; no service manager
# is needed and no other Slurm disturbed. As root or as any user, whose jobs alone it then runs.
#
#   tools/slurm.sh start FOLDER [CPUS]    starts what of it does not run; afterwards export SLURM_CONF=FOLDER/slurm.conf
#   tools/slurm.sh stop FOLDER            cancels its jobs and ends it
set -euo pipefail

usage() {
    sed -n '5,6s/^# \{0,1\}//p' "$0" >&2
    exit 2
}
[ $# -ge 2 ] || usage
action=$1
mkdir -p "$2"
folder=$(realpath "$2")
cpus=${3-4}
export SLURM_CONF=$folder/slurm.conf
PATH=$PATH:/usr/sbin

# wait_for SECONDS WHAT COMMAND... : until it succeeds.
wait_for() {
    local left=$(($1 * 10)) what=$2
    shift 2
    until "$@" >/dev/null 2>&1; do
        if [ $((left -= 1)) -lt 0 ]; then
            echo "tools/slurm.sh: $what" >&2
            tail -n 5 "$folder"/*.log >&2
            return 1
        fi
        sleep 0.1
    done
}

# runs NAME: the daemon, not another program that was given its number since, nor what nobody has buried.
runs() {
    local pid
    read -r pid 2>/dev/null <"$folder/$1.pid" || return 1
    [ "$(sed -nE 's/^Name:\s*//p; s/^State:\s*[^ZX[:space:]].*/runs/p' "/proc/$pid/status" 2>/dev/null)" = "$1"$'\nruns' ]
}

answers() {
    (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null
}

free_port() {
    local port
    while port=$((20000 + RANDOM % 12000)); answers "$port"; do :; done
    echo "$port"
}

configure() {
    local name
    name=$(uname -n)
    name=${name%%.*}
    # Of this cluster alone, so that whoever holds no such key starts nothing here.
    (umask 077 && head -c 128 /dev/urandom >"$folder/munge.key")
    # More processors than there are do no harm, and show more tasks side by side.
    cat >"$SLURM_CONF" <<CONF
ClusterName=$(basename "$folder" | tr -cd '[:alnum:]' | tr '[:upper:]' '[:lower:]')0
SlurmctldHost=$name(127.0.0.1)
SlurmctldPort=$(free_port)
SlurmdPort=$(free_port)
SlurmdParameters=config_overrides
SlurmUser=$(id -un)
SlurmdUser=$(id -un)
AuthType=auth/munge
AuthInfo=socket=$folder/munge.socket
CredType=cred/munge
StateSaveLocation=$folder/state
SlurmdSpoolDir=$folder/spool
SlurmctldPidFile=$folder/slurmctld.pid
SlurmdPidFile=$folder/slurmd.pid
SlurmctldLogFile=$folder/slurmctld.log
SlurmdLogFile=$folder/slurmd.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
MpiDefault=none
SwitchType=switch/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SchedulerParameters=sched_interval=2,batch_sched_delay=0,default_queue_depth=1000
SchedulerType=sched/builtin
ReturnToService=2
SlurmdTimeout=10
KillWait=30
InactiveLimit=0
MinJobAge=600
NodeName=$name NodeAddr=127.0.0.1 CPUs=$cpus State=UNKNOWN
PartitionName=farm Nodes=ALL Default=YES MaxTime=INFINITE State=UP
CONF
}

start() {
    mkdir -p "$folder/state" "$folder/spool"
    [ -f "$SLURM_CONF" ] || configure
    # It looks for others who may write to the folders on the way, as to /tmp; whoever may that is root here.
    # shellcheck disable=SC2094
    runs munged || munged --force --key-file "$folder/munge.key" --socket "$folder/munge.socket" \
        --pid-file "$folder/munged.pid" --log-file "$folder/munged.log" --seed-file "$folder/munge.seed" \
        --num-threads 2 2>>"$folder/munged.log"
    wait_for 10 'munged does not answer' munge --socket "$folder/munge.socket" --no-input
    runs slurmctld || slurmctld
    wait_for 20 'slurmctld does not answer' scontrol ping
    runs slurmd || slurmd
    wait_for 30 'the node does not come up' sh -c 'sinfo -h -o %T | grep -qE "idle|mixed|allocated"'
}

stop() {
    local name pid left
    if [ -f "$SLURM_CONF" ] && runs slurmctld; then
        # More than once, for those that are asked to end may submit themselves again.
        # shellcheck disable=SC2016
        wait_for 40 'jobs do not end' sh -c 'scancel --user="$(id -un)"; [ -z "$(squeue -h)" ]' || true
    fi
    for name in slurmd slurmctld munged; do
        runs "$name" || continue
        pid=$(cat "$folder/$name.pid")
        kill "$pid"
        left=100
        while runs "$name" && [ $((left -= 1)) -ge 0 ]; do sleep 0.1; done
        ! runs "$name" || kill -KILL "$pid"
    done
}

case $action in
    start | stop) "$action" ;;
    *) usage ;;
esac
