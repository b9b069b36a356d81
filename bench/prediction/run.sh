#!/bin/sh
# Trains and predicts every fold of a next-item folder with one fixed recipe:
#   bench/prediction/run.sh FOLDS_DIR OUT_DIR
# For each fold<i>.train.spmf / fold<i>.test.tsv pair of FOLDS_DIR it mines
# the train file with `seqlattice mine` (its defaults), predicts the next items
# of every test row from its `window` column with `seqlattice predict` (its
# defaults, ten items) and writes OUT_DIR/fold<i>.pred, one line of ranked
# items per test row (an empty window is a customer without history). It
# also writes OUT_DIR/summary.tsv: per fold the training (mining) seconds and
# the model size. Nothing depends on the dataset's name: whatever adapts,
# adapts to the data.
#
# The executable is $SEQLATTICE when set, else the release build's; this
# script builds nothing. MINE_OPTIONS and PREDICT_OPTIONS, when set, are
# added to the two commands (for experiments; the recipe is without them).
set -eu

if [ $# -ne 2 ]; then
  echo "usage: $0 FOLDS_DIR OUT_DIR" >&2
  exit 2
fi
folds=$1
out=$2
here=$(cd "$(dirname "$0")" && pwd)
tool=${SEQLATTICE:-$here/../../build/release/cli/seqlattice}
if [ ! -x "$tool" ]; then
  echo "$0: no executable at $tool (build the release tree or set SEQLATTICE)" >&2
  exit 1
fi
mkdir -p "$out"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT INT TERM

found=0
printf 'fold\ttrain_seconds\tmodel_bytes\n' > "$out/summary.tsv"
for test in "$folds"/fold*.test.tsv; do
  [ -e "$test" ] || continue
  fold=$(basename "$test" .test.tsv)
  train=$folds/$fold.train.spmf
  if [ ! -e "$train" ]; then
    echo "$0: $train is missing (make it with make_train.py)" >&2
    exit 1
  fi
  found=$((found + 1))
  start=$(date +%s.%N)
  # shellcheck disable=SC2086
  "$tool" mine "$train" -o "$work/model" ${MINE_OPTIONS:-} > /dev/null
  end=$(date +%s.%N)
  bytes=$(wc -c < "$work/model")
  # The window column as one SPMF sequence per row, each item its own set.
  awk -F '\t' 'NR > 1 {
      line = ""; n = split($2, items, " ")
      for (k = 1; k <= n; ++k) line = line items[k] " -1 "
      print line "-2" }' "$test" > "$work/windows.spmf"
  rows=$(awk 'NR > 1' "$test" | wc -l)
  # shellcheck disable=SC2086
  "$tool" predict "$work/model" --input "$work/windows.spmf" \
    --input-format spmf --top 10 --format csv ${PREDICT_OPTIONS:-} \
    > "$work/predictions.csv"
  # Customers are numbered from 1 in file order; one line each, in order.
  awk -F ',' -v rows="$rows" '
      NR > 1 { if ($1 in line) line[$1] = line[$1] " " $3; else line[$1] = $3 }
      END { for (c = 1; c <= rows; ++c) print (c in line) ? line[c] : "" }' \
    "$work/predictions.csv" > "$out/$fold.pred"
  awk -v f="$fold" -v s="$start" -v e="$end" -v b="$bytes" \
    'BEGIN { printf "%s\t%.2f\t%d\n", f, e - s, b }' >> "$out/summary.tsv"
done
if [ "$found" -eq 0 ]; then
  echo "$0: no fold*.test.tsv in $folds" >&2
  exit 1
fi
