#!/usr/bin/env bash
# Times `seqlattice mine` under time constraints next to the unconstrained
# run at the same support, on public SPMF databases (times are item set
# indexes there): a maximum gap, and a window joining neighbouring item sets.
# Every run holds the machine-wide timing lock; each is repeated and the
# medians of wall and CPU (user + system) seconds are printed with the
# patterns found and the ratio to the unconstrained run's medians.
#
# usage: bench/time_constraints.sh [BUILD_DIR]   (default build/release)
# env:   DATA_DIR  databases (default ../shared/data beside the repository)
#        REPEAT    runs per row (default 3)
#        MAX_GAP   the --max-gap of the constrained rows (default 2)
#        WINDOW    the --window of the constrained rows (default 1)
#        TIMEOUT   seconds per run (default 300)
set -euo pipefail

repo="$(cd "$(dirname "$0")/.." && pwd)"
build="${1:-$repo/build/release}"
program="$build/cli/seqlattice"
data="${DATA_DIR:-$repo/../shared/data}"
repeat="${REPEAT:-3}"
max_gap="${MAX_GAP:-2}"
window="${WINDOW:-1}"
limit="${TIMEOUT:-300}"
lock=/tmp/seqlattice-timing.lock

if [[ ! -x "$program" ]]; then
  echo "time_constraints: $program not built" >&2
  exit 1
fi
if [[ ! -d "$data" ]]; then
  echo "time_constraints: no databases in $data" >&2
  exit 1
fi
tmp="$(mktemp -d)"
trap 'rm -rf "$tmp"' EXIT

median() { sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

# One run: prints "wall cpu patterns", or "timeout".
run_once() {
  local file="$1" minsup="$2"
  shift 2
  if ! flock "$lock" timeout "$limit" /usr/bin/time -f "%e %U %S" \
      -o "$tmp/time" "$program" mine "$data/$file" --format spmf \
      --min-support "$minsup" --max-items 31 -o "$tmp/model" "$@" \
      >"$tmp/out" 2>"$tmp/err"; then
    echo timeout
    return
  fi
  local patterns
  patterns="$(awk '/^patterns/ { print $2 }' "$tmp/out")"
  awk -v p="$patterns" '{ printf "%s %.2f %s\n", $1, $2 + $3, p }' "$tmp/time"
}

# database  min-support
rows="
BMS1_spmf.txt 0.001
kosarak10k_seq.txt 0.002
IBM_QUEST_10k.txt 0.05
"

printf '%-20s %-8s %-16s %9s %9s %8s %8s %8s\n' database support run \
  patterns wall_s cpu_s wall_x cpu_x
while read -r file minsup; do
  [[ -z "$file" ]] && continue
  base_wall="" base_cpu=""
  for run in none "--max-gap $max_gap" "--window $window"; do
    args=()
    [[ "$run" != none ]] && read -r -a args <<<"$run"
    : >"$tmp/runs"
    for ((k = 0; k < repeat; ++k)); do
      run_once "$file" "$minsup" "${args[@]}" >>"$tmp/runs"
    done
    if grep -q timeout "$tmp/runs"; then
      printf '%-20s %-8s %-16s %9s\n' "$file" "$minsup" "$run" "timeout"
      continue
    fi
    wall="$(cut -d' ' -f1 "$tmp/runs" | median)"
    cpu="$(cut -d' ' -f2 "$tmp/runs" | median)"
    patterns="$(head -1 "$tmp/runs" | cut -d' ' -f3)"
    if [[ "$run" == none ]]; then
      base_wall="$wall" base_cpu="$cpu"
    fi
    awk -v f="$file" -v s="$minsup" -v r="$run" -v p="$patterns" \
      -v w="$wall" -v c="$cpu" -v bw="$base_wall" -v bc="$base_cpu" \
      'BEGIN { printf "%-20s %-8s %-16s %9s %9.2f %9.2f %8.2f %8.2f\n",
               f, s, r, p, w, c, w / (bw > 0 ? bw : 0.01),
               c / (bc > 0 ? bc : 0.01) }'
  done
done <<<"$rows"
