#!/bin/sh
# Times the two inputs that once cost time quadratic in their size, from 10^3
# to 10^5, to show that the cost now grows linearly:
#
#   predict   one customer with N transactions, predicted with the sample
#             model (predict --input): the history is matched N times, each
#             time one transaction shorter
#   csv merge one customer with N rows of one time and N distinct items, read
#             and mined to single items (mine --max-items 1): the rows are
#             merged into one transaction of N items
#
# Usage: bench/linear_inputs.sh [SEQLATTICE] [SIZES]
#   SEQLATTICE  the tool (default build/release/cli/seqlattice)
#   SIZES       default "1000 3000 10000 30000 100000"
# REPEAT runs per point (default 3) give the median; each run is wrapped in
# flock on /tmp/seqlattice-timing.lock, since the machine may be shared.
# Prints one line per point: what, N, median seconds, seconds per 10^3.
set -eu
tool=${1:-build/release/cli/seqlattice}
sizes=${2:-"1000 3000 10000 30000 100000"}
repeat=${REPEAT:-3}
root=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$tool" mine "$root/data/sample/orders.csv" -o "$work/sample.model" \
  --min-support 0.03 >/dev/null
# The sample's items, in a fixed order, for the long history.
tail -n +2 "$root/data/sample/orders.csv" | cut -d, -f3- | sort -u \
  >"$work/items"

# The median of the seconds of $repeat runs of the command, each timed
# inside the lock (waiting for it is not counted).
median() {
  for r in $(seq "$repeat"); do
    flock /tmp/seqlattice-timing.lock sh -c \
      'start=$(date +%s.%N); "$@" >/dev/null; end=$(date +%s.%N);
       echo "$end - $start" | bc -l' timed "$@"
  done | sort -n | awk '{ v[NR] = $1 } END { printf "%.3f", v[int((NR + 1) / 2)] }'
}

for n in $sizes; do
  awk -v n="$n" 'BEGIN { print "customer,time,item" }
    { items[NR] = $0 } END {
      for (t = 1; t <= n; ++t) print "c1," t "," items[(t * 7) % NR + 1] }' \
    "$work/items" >"$work/history.csv"
  s=$(median "$tool" predict "$work/sample.model" --input "$work/history.csv")
  printf 'predict    %7d  %8s s  %.4f s per 10^3\n' "$n" "$s" \
    "$(echo "$s * 1000 / $n" | bc -l)"
done

for n in $sizes; do
  awk -v n="$n" 'BEGIN { print "customer,time,item";
    for (r = 1; r <= n; ++r) print "c1,1,item" (n - r) }' >"$work/rows.csv"
  s=$(median "$tool" mine "$work/rows.csv" -o "$work/rows.model" \
    --min-support 1 --max-items 1)
  printf 'csv merge  %7d  %8s s  %.4f s per 10^3\n' "$n" "$s" \
    "$(echo "$s * 1000 / $n" | bc -l)"
done
