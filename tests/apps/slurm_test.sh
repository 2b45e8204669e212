#!/bin/bash
# A key as an array of Slurm's, whose daemons, node and tasks are killed meanwhile; SEED chooses when and which.
# usage: slurm_test.sh VELOXA
tools=$(realpath "$(dirname "$0")/../../tools")
# shellcheck source=tests/apps/lib.sh
. "$(dirname "$0")/lib.sh"
export TMPDIR=/tmp # sockets have short names
slurm=$(mktemp -d)
trap '"$tools/slurm.sh" stop "$slurm"; rm -rf "$slurm" "$folder"; [ $failures -eq 0 ] || exit 1' EXIT
RANDOM=${SEED-15}
hurried=()
frames=1-48

# Distinct frames, each some tenths of a second's work.
expect 0 "" plate -o p --size 160x90 --frames $frames
oiiotool --frames $frames p/fg.%04d.exr --resample 960x540 -o fg.%04d.exr || fail "no plates"
mkdir serial farm
# shellcheck disable=SC2054
key=(--fg fg.%04d.exr --frames "$frames" --pick 0,450,90,540 --set unmix_method=unmix --shot-frames 1-2)
expect 0 "" key "${key[@]}" -o serial/a.%04d.exr -o matte=serial/m.%04d.png
expect 0 "" farm slurm "${key[@]}" -o farm/a.%04d.exr -o matte=farm/m.%04d.png --chunks 8
mv out.txt job.sh

"$tools/slurm.sh" start "$slurm" 8 || { fail "no Slurm"; exit; }
export SLURM_CONF=$slurm/slurm.conf
job=$(sbatch --parsable job.sh) || { fail "sbatch took no job"; exit; }

# What the job's tasks say of themselves: NUMBER STATE, as of the array.
states() {
    scontrol -o show job "$job" | sed -nE 's/.* ArrayTaskId=([0-9]+) .* JobState=([A-Z]+) .*/\1 \2/p'
}
in_state() {
    states | sed -n "s/ $1\$//p"
}
restarts() {
    scontrol -o show job "$job" | awk -F Restarts= '{ sum += $2 + 0 } END { print sum }'
}
# programs_of TASK: the numbers of its processes, of all tasks' for "". On a busy machine a list that Slurm gives
# or that takes more processes comes late.
programs_of() {
    local process name
    for process in /proc/[0-9]*; do
        { read -r name <"$process/comm"; } 2>/dev/null || continue
        { [ "$name" = veloxa ] && [ "$process/cwd" -ef . ]; } || continue
        [ -z "$1" ] || grep -qzx "SLURM_ARRAY_TASK_ID=$1" "$process/environ" 2>/dev/null || continue
        echo "${process#/proc/}"
    done
}
lives() {
    grep -q '^State:.[^ZX]' "/proc/$1/status" 2>/dev/null
}
# wait_until COMMAND...: false when it takes too long.
wait_until() {
    local end=$((SECONDS + 120))
    until "$@"; do
        [ $SECONDS -lt $end ] || return 1
        sleep 0.05
    done
}
gone() {
    ! lives "$1"
}
# rests PROCESS: it is stopped, or gone.
rests() {
    ! grep -q '^State:.[RSD]' "/proc/$1/status" 2>/dev/null
}
# is_told TASK: a SIGTERM waits for its program, which is stopped.
is_told() {
    local waiting
    waiting=$(sed -nE 's/^ShdPnd:\s*//p' "/proc/$(programs_of "$1")/status" 2>/dev/null)
    ((0x0$waiting & 0x4000))
}
# What Slurm runs tasks under, which outlives slurmd.
steps() {
    local process
    for process in /proc/[0-9]*; do
        [ "$(cat "$process/comm" 2>/dev/null)" = slurmstepd ] || continue
        readlink "$process"/fd/* | grep -qF "$slurm/" && echo "${process#/proc/}"
    done
}
# below PROCESS...: what they began, the nearest first.
below() {
    local process children=()
    for process in "$@"; do
        # shellcheck disable=SC2207
        children+=($(cat "/proc/$process/task/"*/children 2>/dev/null))
    done
    [ ${#children[@]} -eq 0 ] || { echo "${children[@]}" && below "${children[@]}"; }
}
kill_all() {
    local pid
    kill -KILL "$@" 2>/dev/null
    for pid in "$@"; do wait_until gone "$pid" || fail "process $pid lives"; done
}
is() {
    states | grep -qx "$1 $2"
}
submit_again() {
    scontrol requeue "${job}_$1" 2>/dev/null
    is "$1" PENDING
}

# Slurm waits two minutes before it runs a task again; within the second that it ended in, slurmd would refuse it.
hurry() {
    local task
    for task in $(in_state PENDING); do
        [ -n "${hurried[task]-}" ] && [ $((SECONDS - hurried[task])) -lt 5 ] && continue
        hurried[task]=$SECONDS
        scontrol update "job=${job}_$task" starttime=now+2 2>/dev/null
    done
}

# The frames that have both of their files, each of which is another once it is made again.
whole() {
    local matte
    for matte in farm/m.*.png; do
        stat -c '%n %i %Y' "$matte" "$(sed 's/m\./a./; s/png/exr/' <<<"$matte")" 2>/dev/null | xargs
    done | grep 'm.*a\.'
}

# disturb HOW TASK: a running task, or all; then frames that are whole are noted, which nobody may make again.
disturb() {
    local how=$1 task=$2 before processes
    before=$(restarts)
    case $how in
        program) # as when memory runs out: nobody tries again, but whoever looks after the job
            # shellcheck disable=SC2046
            kill_all $(programs_of "$task")
            wait_until is "$task" FAILED || fail "a killed task is $(states | xargs)"
            wait_until submit_again "$task" || fail "no second try of $(states | xargs)"
            ;;
        term) # as before a time limit: it submits itself again, and no other
            scancel --batch --signal=TERM "${job}_$task"
            wait_until is_told "$task" || fail "the program is not told: $(states | xargs)"
            # shellcheck disable=SC2046
            kill -CONT $(programs_of "$task")
            wait_until is "$task" PENDING || fail "a task that was told to end is $(states | xargs)"
            [ "$(restarts)" -eq $((before + 1)) ] || fail "tasks were submitted again for another: $(states | xargs)"
            ;;
        cancel) # it stays so
            scancel "${job}_$task"
            wait_until is "$task" CANCELLED || fail "a cancelled task is $(states | xargs)"
            sleep 2
            { is "$task" CANCELLED && [ "$(restarts)" -eq "$before" ]; } || fail "a cancelled task came back: $(states | xargs)"
            wait_until submit_again "$task" || fail "no second try of $(states | xargs)"
            ;;
        daemon) # tasks go on without it
            kill_all "$(cat "$slurm/slurmd.pid")"
            sleep 1
            "$tools/slurm.sh" start "$slurm"
            ;;
        node)
            # Those above others first, so that none tells how these ended.
            kill_all "$(cat "$slurm/slurmd.pid")"
            processes=$(steps)
            # shellcheck disable=SC2046,SC2086
            kill_all $processes $(below $processes)
            scontrol update nodename=ALL state=down reason=killed
            "$tools/slurm.sh" start "$slurm" 
            scontrol update nodename=ALL state=resume 2>/dev/null # unless it is back by itself
            ;;
    esac
    whole >>whole.txt
    hurry
}

# at_work TASK: its program runs, which is $program then.
at_work() {
    program=$(programs_of "$1")
    [ -n "$program" ] && is "$1" RUNNING
}
some_at_work() {
    local running
    mapfile -t running < <(in_state RUNNING)
    [ ${#running[@]} -gt 0 ] && task=${running[RANDOM % ${#running[@]}]} && at_work "$task"
}
send_all() {
    local programs program
    mapfile -t programs < <(programs_of "")
    [ ${#programs[@]} -eq 0 ] || kill "-$1" "${programs[@]}" 2>/dev/null
    # On a busy machine a later SIGTERM would be taken before the stop: its number is the lower one.
    [ "$1" != STOP ] || for program in "${programs[@]}"; do wait_until rests "$program"; done
}
made() {
    [ "$(find farm -name 'a.*.exr' | wc -l)" -ge "$1" ]
}

all_at_work() {
    [ "$(programs_of "" | wc -l)" -eq 8 ]
}
under_way() {
    grep -q 'is measured' "veloxa-${job}_7.log" 2>/dev/null && return
    kill -CONT "$program"
    sleep 0.05
    kill -STOP "$program"
    wait_until rests "$program"
    false
}
# Task 7's number is the whole array's for Slurm. It is told to end before it has all of its frames under way,
# to which it comes in steps, or a fast machine would be past it.
wait_until all_at_work || fail "not all tasks begin: $(states | xargs)"
send_all STOP # so that all have frames left
disturb cancel 7
rm -f "veloxa-${job}_7.log"
wait_until at_work 7 || fail "the cancelled task does not begin again: $(states | xargs)"
send_all STOP
wait_until under_way || fail "the task comes to no frame: $(states | xargs)"
disturb term 7

# Between disturbances one task alone makes a frame, beside those that came back: a busy machine may let much
# time pass before all are stopped.
frames_made=0
goes_on() {
    made $((frames_made + 1)) || gone "$program"
}
for how in program daemon program node program; do
    wait_until some_at_work || fail "$how finds no task to go on: $(states | xargs)"
    kill -CONT "$program" 2>/dev/null # one that came back may be done by now
    wait_until goes_on || fail "no frames are made: $(states | xargs)"
    send_all STOP
    frames_made=$(find farm -name 'a.*.exr' | wc -l)
    wait_until some_at_work || fail "$how finds no task at work: $(states | xargs)"
    disturb $how "$task"
done
[ "$frames_made" -lt 48 ] || fail "all frames were made before the last disturbance"

all_done() {
    send_all CONT
    hurry
    [ "$(in_state COMPLETED | wc -l)" -eq 8 ]
}
wait_until all_done || fail "tasks are $(states | xargs)"
diff -rq serial farm >err.txt || fail "differs from one run: $(cat err.txt)"
expect 0 "" farm check "${key[@]}" -o farm/a.%04d.exr -o matte=farm/m.%04d.png
sort -u whole.txt >seen.txt
whole | sort | comm -13 - seen.txt >again.txt
{ [ -s seen.txt ] && [ ! -s again.txt ]; } || fail "made again though whole: $(cat again.txt)"
# Tasks that ended by themselves tell how many they made; of those that were killed some may not be among them.
made=$(sed -nE 's/.* ([0-9]+) made, .*/\1/p' veloxa-*.log | awk '{ sum += $1 } END { print sum + 0 }')
{ [ "$made" -gt 0 ] && [ "$made" -le 48 ]; } || fail "$made frames were made"
[ $failures -eq 0 ] || tail -n 20 veloxa-*.log "$slurm"/slurm*.log
