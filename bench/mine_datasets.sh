#!/usr/bin/env bash
# Times the miner on the public benchmark databases and prints, per database
# and minimum support: patterns found (and whether they equal the reference
# count), the longest pattern, wall time, CPU time (user + system) and peak
# RSS of the whole process, beside the fastest published peer wall time and
# the Java peers' RSS. On a machine shared with other work the CPU time is
# the steadier figure.
#
# usage: bench/mine_datasets.sh [BUILD_DIR]   (default build/release)
# env:   DATA_DIR   databases (default ../shared/data beside the repository)
#        MAX_ITEMS  longest pattern mined (default 31, the pattern key limit)
#        TIMEOUT    seconds per row (default 120)
#        ROWS       a grep pattern selecting rows, e.g. ROWS=SIGN
#        MODE       what is timed:
#                   cli  (default) the whole `seqlattice mine` run: reading,
#                        mining, filling the dictionary, building the
#                        lattice and saving the model
#                   fill the mine_spmf driver mining into a dictionary and
#                        building its lattice (no saving)
#                   mine the mine_spmf driver counting patterns only
set -euo pipefail

repo="$(cd "$(dirname "$0")/.." && pwd)"
build="${1:-$repo/build/release}"
mode="${MODE:-cli}"
case "$mode" in
  cli) program="$build/cli/seqlattice" target=seqlattice_cli ;;
  fill | mine) program="$build/bench/mine_spmf" target=mine_spmf ;;
  *) echo "mine_datasets: MODE must be cli, fill or mine" >&2; exit 2 ;;
esac
data="${DATA_DIR:-$repo/../shared/data}"
max_items="${MAX_ITEMS:-31}"
limit="${TIMEOUT:-120}"

if [[ ! -x "$program" ]]; then
  echo "mine_datasets: $program not built (cmake --build $build --target $target)" >&2
  exit 1
fi

# Runs one row; prints "customers min_count patterns longest" on stdout.
run_row() {
  local file="$1" minsup="$2"
  if [[ "$mode" == cli ]]; then
    "$program" mine "$file" --format spmf --min-support "$minsup" \
      --max-items "$max_items" -o "$tmp.model" >"$tmp.cli" || return
    awk '/^customers/ { c = $2 } /^min support/ { m = $5 }
         /^patterns/ { p = $2 } /^  [0-9]+ items?/ { l = $1 }
         END { print c, m, p, l }' "$tmp.cli"
  else
    local fill=()
    [[ "$mode" == fill ]] && fill=(dictionary)
    "$program" "$file" "$minsup" "$max_items" 0 "${fill[@]}"
  fi
}

# database  min-support  reference-patterns  fastest-peer-wall-s  java-rss-mb
# ("-": no published figure; the last rows are those no peer finished).
rows="
SIGN.txt 0.4 518 0.08 -
SIGN.txt 0.25 4029 1.8 158
SIGN.txt 0.2 9718 0.25 -
SIGN.txt 0.15 27213 3.5 370
SIGN.txt 0.1 110417 1.77 602
BMS1_spmf.txt 0.002 798 0.17 -
BMS1_spmf.txt 0.001 3991 0.21 308
BMS1_spmf.txt 0.0008 10286 2.6 476
BMS1_spmf.txt 0.0006 461521 2.12 1424
kosarak10k_seq.txt 0.005 1716 0.12 -
kosarak10k_seq.txt 0.002 19477 0.34 -
kosarak10k_seq.txt 0.0015 272937 1.44 -
FOODMART_seq.txt 0.01 1557 4.4 452
FOODMART_seq.txt 0.002 1559 1.55 -
FOODMART_seq.txt 0.001 25852 2.16 731
FOODMART_seq.txt 0.0007 159493 10.3 1265
FOODMART_seq.txt 0.0005 665262 21.1 1187
FOODMART_seq.txt 0.0003 2059945 49.4 1450
FIFA.txt 0.2 938 0.74 -
FIFA.txt 0.1 40642 6.62 -
IBM_QUEST_10k.txt 0.05 8723 1.98 -
IBM_QUEST_10k.txt 0.02 103305 9.78 -
IBM_QUEST_10k.txt 0.01 639583 32.56 -
MSNBC_spmf31790.txt 0.05 1478 0.94 -
MSNBC_spmf31790.txt 0.02 9682 1.96 -
MSNBC_spmf31790.txt 0.01 45279 4.50 -
BMS1_spmf.txt 0.0005 - - -
kosarak10k_seq.txt 0.001 - - -
"

printf '%-20s %8s %6s %9s %-5s %7s %8s %7s %7s %9s %8s\n' database minsup \
  count patterns match longest wall_s cpu_s rss_mb peer_wall java_rss
tmp="$(mktemp)"
trap 'rm -f "$tmp" "$tmp.out" "$tmp.cli" "$tmp.model"' EXIT
while read -r file minsup reference peer_wall java_rss; do
  [[ -z "$file" ]] && continue
  if [[ -n "${ROWS:-}" ]] && ! grep -q -- "$ROWS" <<<"$file $minsup"; then
    continue
  fi
  if [[ ! -f "$data/$file" ]]; then
    echo "$file: not found in $data, skipped"
    continue
  fi
  status=0
  export -f run_row
  export mode program max_items tmp
  timeout "$limit" /usr/bin/time -f '%e %U %S %M' -o "$tmp" \
    bash -c 'run_row "$0" "$1"' "$data/$file" "$minsup" \
    >"$tmp.out" 2>&1 || status=$?
  if [[ $status -eq 124 ]]; then
    printf '%-20s %8s  did not finish within %s s\n' "$file" "$minsup" "$limit"
    continue
  elif [[ $status -ne 0 ]]; then
    printf '%-20s %8s  failed: %s\n' "$file" "$minsup" "$(tail -n 1 "$tmp.out")"
    continue
  fi
  read -r _ count patterns longest _ _ <"$tmp.out"
  read -r wall user system rss_kb <"$tmp"
  cpu="$(awk -v u="$user" -v s="$system" 'BEGIN { printf "%.2f", u + s }')"
  match="-"
  [[ "$reference" != "-" ]] && { [[ "$patterns" == "$reference" ]] && match=ok || match=DIFF; }
  printf '%-20s %8s %6s %9s %-5s %7s %8s %7s %7d %9s %8s\n' "$file" \
    "$minsup" "$count" "$patterns" "$match" "$longest" "$wall" "$cpu" \
    $((rss_kb / 1024)) "$peer_wall" "$java_rss"
done <<<"$rows"
rm -f "$tmp.out"
