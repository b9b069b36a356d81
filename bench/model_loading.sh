#!/usr/bin/env bash
# Model loading throughput for models of a few sizes: each model is mined
# with the release tool from a public database (once, kept in WORK_DIR), then
# bench/load_model loads it REPEAT times, each in a process of its own, and
# the medians of CPU and wall time are printed with the MB/s (10^6 bytes)
# each gives. The target is 400 MB/s; the CPU column is the one to read on a
# machine shared with other work, where wall time is not ours alone.
# Two loads are timed: the model as `info`, `rules` and `export` open it, and
# (the *_ready columns) the model with the customers' sequence index built,
# as prediction needs it (the index is otherwise built on its first query).
#
# usage: bench/model_loading.sh [BUILD_DIR]   (default build/release)
# env:   DATA_DIR  databases (default ../shared/data beside the repository)
#        WORK_DIR  where the models go (default /tmp/seqlattice-model-loading)
#        REPEAT    loads per model, the median is printed (default 5)
# Each load runs under flock on /tmp/seqlattice-timing.lock, since the
# machine may be shared.
set -euo pipefail

repo="$(cd "$(dirname "$0")/.." && pwd)"
build="${1:-$repo/build/release}"
tool="$build/cli/seqlattice"
loader="$build/bench/load_model"
data="${DATA_DIR:-$repo/../shared/data}"
repeat="${REPEAT:-5}"
python=/usr/bin/python3

for program in "$tool" "$loader"; do
  if [[ ! -x "$program" ]]; then
    echo "model_loading.sh: $program missing: build $build first" >&2
    exit 1
  fi
done
[[ -d "$data" ]] || { echo "model_loading.sh: no databases at $data" >&2; exit 1; }
# The models are kept between runs: mining them takes longer than the loads.
work="${WORK_DIR:-/tmp/seqlattice-model-loading}"
mkdir -p "$work"

# name  database  min support  max items
models=(
  "BMS1 BMS1_spmf.txt 0.0008 31"
  "IBM-Quest-10k IBM_QUEST_10k.txt 0.02 4"
  "kosarak10k kosarak10k_seq.txt 0.0015 31"
)

printf '%-14s %10s %9s %9s %9s %9s %9s %9s %9s\n' model bytes patterns \
  cpu_ms wall_ms cpu_MB/s wall_MB/s cpu_ready cpu_MB/s_ready
for row in "${models[@]}"; do
  read -r name database minsup maxitems <<<"$row"
  model="$work/$name.model"
  if [[ ! -s "$model" ]]; then
    "$tool" mine "$data/$database" --min-support "$minsup" \
      --max-items "$maxitems" --max-patterns 100000000 -o "$model" >/dev/null
  fi
  for ((run = 0; run < repeat; ++run)); do
    flock /tmp/seqlattice-timing.lock "$loader" "$model"
  done | "$python" -c '
import statistics, sys
rows = [line.split() for line in sys.stdin if line.strip()]
size = int(rows[0][0])
cpu = statistics.median(float(r[2]) for r in rows)
wall = statistics.median(float(r[3]) for r in rows)
ready = statistics.median(float(r[4]) for r in rows)
print("%-14s %10d %9s %9.1f %9.1f %9.0f %9.0f %9.1f %9.0f" % (
    sys.argv[1], size, rows[0][1], cpu, wall, size / cpu / 1e3,
    size / wall / 1e3, ready, size / ready / 1e3))
' "$name"
done
