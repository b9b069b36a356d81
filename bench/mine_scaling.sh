#!/usr/bin/env bash
# Times the whole `seqlattice mine` run (read, mine, fill, lattice, save) on
# databases of growing size with the same patterns, so that growth can be
# read at a glance: a flat "us/cust" column (and "vs first" near 1) is
# linear growth, a CPU/wall near 2 is both cores busy. The CPU columns say
# the same for a machine shared with other work, where wall time is not
# ours alone.
#
# Two series are built under WORK_DIR (default a temporary folder):
#   copies   SOURCE concatenated with itself COPIES times (each count
#            multiplied, the patterns the same)
#   sampled  SIZES customers drawn from SOURCE with replacement (fixed
#            seed, so every run times the same files)
#
# usage: bench/mine_scaling.sh [BUILD_DIR]   (default build/release)
# env:   DATA_DIR  databases (default ../shared/data beside the repository)
#        SOURCE    SPMF database to scale (default MSNBC_spmf31790.txt)
#        MINSUP    minimum support fraction (default 0.01)
#        COPIES    default "1 3 10 31"
#        SIZES     default "10000 100000 1000000"
#        REPEAT    runs per database, the median is printed (default 3)
#        SEED      sampling seed (default 18)
# Each run is wrapped in flock on /tmp/seqlattice-timing.lock, since the
# machine may be shared.
set -euo pipefail

repo="$(cd "$(dirname "$0")/.." && pwd)"
build="${1:-$repo/build/release}"
tool="$build/cli/seqlattice"
data="${DATA_DIR:-$repo/../shared/data}"
source_name="${SOURCE:-MSNBC_spmf31790.txt}"
source_file="$data/$source_name"
minsup="${MINSUP:-0.01}"
copies="${COPIES:-1 3 10 31}"
sizes="${SIZES:-10000 100000 1000000}"
repeat="${REPEAT:-3}"
seed="${SEED:-18}"
python=/usr/bin/python3

if [[ ! -x "$tool" ]]; then
  echo "mine_scaling: $tool not built (cmake --build $build --target seqlattice_cli)" >&2
  exit 1
fi
if [[ ! -f "$source_file" ]]; then
  echo "mine_scaling: $source_file not found, nothing to time" >&2
  exit 0
fi
if [[ -n "${WORK_DIR:-}" ]]; then
  work="$WORK_DIR"
  mkdir -p "$work"
else
  work="$(mktemp -d)"
  trap 'rm -rf "$work"' EXIT
fi

# Writes $2 customers drawn from $1 with replacement into $3.
sample() {
  "$python" - "$1" "$2" "$3" "$seed" <<'EOF'
import random, sys
source, n, target, seed = sys.argv[1], int(sys.argv[2]), sys.argv[3], int(sys.argv[4])
with open(source) as f:
    lines = [l for l in f if l.strip() and not l.startswith(("#", "@"))]
rng = random.Random(seed)
with open(target, "w") as out:
    for _ in range(n):
        out.write(lines[rng.randrange(len(lines))])
EOF
}

# Prints "wall cpu rss_kb patterns" of one timed run of the tool on $1.
run_once() {
  flock /tmp/seqlattice-timing.lock /usr/bin/time -f '%e %U %S %M' \
    -o "$work/time" "$tool" mine "$1" --format spmf --min-support "$minsup" \
    --max-items 31 -o "$work/model" >"$work/out"
  local patterns
  patterns="$(awk '/^patterns/ { print $2 }' "$work/out")"
  awk -v p="$patterns" '{ printf "%s %.2f %s %s\n", $1, $2 + $3, $4, p }' \
    "$work/time"
}

# The median, by wall time, of $repeat runs.
run_median() {
  for _ in $(seq "$repeat"); do run_once "$1"; done |
    sort -n | awk -v r="$repeat" 'NR == int((r + 1) / 2)'
}

printf '%-10s %9s %9s %8s %8s %8s %8s %8s %8s %8s %8s\n' database customers \
  patterns wall_s cpu_s cpu/wall rss_mb us/cust 'vs first' cpu_us 'vs first'
first=""
first_cpu=""
report() {
  local name="$1" file="$2"
  local customers wall cpu rss patterns per per_cpu
  customers="$(grep -cv '^[#@]' "$file")"
  read -r wall cpu rss patterns < <(run_median "$file")
  per="$(awk -v w="$wall" -v c="$customers" 'BEGIN { printf "%.2f", w * 1e6 / c }')"
  per_cpu="$(awk -v w="$cpu" -v c="$customers" 'BEGIN { printf "%.2f", w * 1e6 / c }')"
  [[ -z "$first" ]] && first="$per"
  [[ -z "$first_cpu" ]] && first_cpu="$per_cpu"
  awk -v n="$name" -v c="$customers" -v p="$patterns" -v w="$wall" \
    -v u="$cpu" -v r="$rss" -v per="$per" -v f="$first" -v pc="$per_cpu" \
    -v fc="$first_cpu" 'BEGIN {
      printf "%-10s %9d %9d %8.2f %8.2f %8.2f %8d %8.2f %8.2f %8.2f %8.2f\n",
        n, c, p, w, u, (w > 0 ? u / w : 0), r / 1024, per, per / f, pc,
        pc / fc }'
}

for n in $copies; do
  file="$work/copies_$n.txt"
  [[ -f "$file" ]] || for _ in $(seq "$n"); do cat "$source_file"; done >"$file"
  report "x$n" "$file"
done
first=""
first_cpu=""
for n in $sizes; do
  file="$work/sampled_$n.txt"
  [[ -f "$file" ]] || sample "$source_file" "$n" "$file"
  report "s$n" "$file"
done
