#!/bin/bash
# Keys as jobs: what `veloxa farm` prints runs, and makes what one run makes.
# shellcheck source=tests/apps/lib.sh
. "$(dirname "$0")/lib.sh"

expect_rows farm <<'TABLE'
2|a command is needed: check, slurm, openjd, make; see veloxa farm --help|
2|slrum: there is no such command; there are check, slurm|slrum
2|see veloxa farm make --help|make
2|farm make has no such option|make --other
TABLE
expect_rows farm slurm --fg p/fg.%d.exr <<'TABLE'
2|--frames|-o a.exr
2|several frames need a frame pattern|-o a.exr --frames 1-7
2|standard output|-o - --frames 1-7
2|--chunks N|-o a.%d.exr --frames 1-7 --chunk 0/3
2|every task|-o a.%d.exr --frames 1-7 --save-script a.script
2|--dry-run|-o a.%d.exr --frames 1-7 --dry-run
2|1 to 1000|-o a.%d.exr --frames 1-7 --chunks 1001
2|--name a/b|-o a.%d.exr --frames 1-7 --name a/b
2|did you mean --output|--outptu a.%d.exr --frames 1-7
0|each task measures the shot|-o a.%d.exr --frames 1-7 --set unmix_method=unmix
0|array=0-2|-o a.%d.exr --frames 1-21
0|array=0-6|-o a.%d.exr --frames 1-7 --chunks 12
0|array=0-999|-o a.%d.exr --frames 1-100000
0|signal=B:TERM@340|-o a.%d.exr --frames 1-7 --grace 300
0|cpus-per-task=3|-o a.%d.exr --frames 1-7 --threads 3
TABLE
expect 2 "no chunks" farm make --fg - -o a.%d.exr --frames 1-7

# Each in a folder of its own, from elsewhere; the options arrive in whatever way they were given.
odd=$'it\'s #1 of $HOME`{{\n\xff'
mkdir "$odd" "$odd/serial" "$odd/jobs"
cd "$odd" || exit 1
expect 0 "" plate -o 'p %s' --size 64x48 --frames 1-7 || exit 1
key=(--fg 'p %s/fg.%04d.exr' "--bg=p %s/bg.%04d.exr" --frames=1-7 --set "screen_color=0 1 0" --set brights=150 --no-provenance)
expect 0 "" key "${key[@]}" -o "serial/a $odd.%02d.exr" -o "matte=serial/-b.##.png"
expect 0 "" farm make "${key[@]}" -o "jobs/a $odd.%02d.exr" -o "matte=jobs/-b.##.png" --chunks 3 --name odd
mv out.txt ../job.mk
expect 0 "" farm slurm "${key[@]}" -o "jobs/a $odd.%02d.exr" -o "matte=jobs/-b.##.png" --chunks 3 --name odd
grep -qx '#SBATCH --job-name=odd' out.txt || fail "no name: $(head out.txt)"
mv out.txt ../job.sh
cd "$folder" || exit 1
make -s -j2 -f job.mk >err.txt 2>&1 || fail "make: $(cat err.txt)"
diff -r -x ".*.veloxa" "$odd/serial" "$odd/jobs" >err.txt || fail "jobs differ from one run: $(cat err.txt)"
rm "$odd"/jobs/*
for task in 0 1 2; do
    SLURM_ARRAY_TASK_ID=$task bash job.sh 2>err.txt || fail "task $task: $(cat err.txt)"
done
diff -r -x ".*.veloxa" "$odd/serial" "$odd/jobs" >err.txt || fail "jobs differ from one run: $(cat err.txt)"

# From a folder whose name a template could not hold. Else it would end in something that is no JSON.
cd "$odd" && expect 2 UTF-8 farm openjd "${key[@]}" -o a.%d.exr
