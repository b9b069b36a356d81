#!/usr/bin/env bash
# The HTML report's size, the time "seqlattice report" takes to write it, and
# the time headless Chromium takes to load it, for the bundled sample and for
# IBM Quest 10k at a support of 0.02 (103,305 patterns of up to 10 items).
# Times are medians of REPEAT runs (default 5); run it under
# flock /tmp/seqlattice-timing.lock on a shared machine.
#
# usage: bench/report_load.sh [BUILD_DIR]   (default build/release)
# env:   DATA_DIR  databases (default ../shared/data beside the repository)
#        TOP       rules embedded (the report's --top, default 1000)
set -euo pipefail

repo="$(cd "$(dirname "$0")/.." && pwd)"
build="$(cd "${1:-$repo/build/release}" && pwd)"
data="${DATA_DIR:-$repo/../shared/data}"
cli="$build/cli/seqlattice"
work="$build/bench/report"
repeat="${REPEAT:-5}"
mkdir -p "$work"

# puppeteer-core as the browser tests install it.
if [ ! -d "$work/node_modules/puppeteer-core" ]; then
  cp "$repo/tests/browser/package.json" "$repo/tests/browser/package-lock.json" "$work/"
  (cd "$work" && npm ci --no-audit --no-fund --loglevel=error)
fi
cp "$repo/bench/report_load.mjs" "$work/"

"$cli" mine "$repo/data/sample/orders.csv" -o "$work/sample.model" --min-support 0.03 >/dev/null
pages=("$work/sample.html")
models=("$work/sample.model")
if [ -f "$data/IBM_QUEST_10k.txt" ]; then
  "$cli" mine "$data/IBM_QUEST_10k.txt" -o "$work/quest.model" --min-support 0.02 \
    --max-items 10 | grep '^patterns'
  pages+=("$work/quest.html")
  models+=("$work/quest.model")
else
  echo "report_load: no $data/IBM_QUEST_10k.txt; the sample only"
fi

for i in "${!models[@]}"; do
  times=()
  for _ in $(seq "$repeat"); do
    start=$(date +%s%N)
    "$cli" report "${models[$i]}" -o "${pages[$i]}" --top "${TOP:-1000}"
    times+=("$(( ($(date +%s%N) - start) / 1000000 ))")
  done
  printf '%s  report written in %s ms (median of %s)\n' "${models[$i]}" \
    "$(printf '%s\n' "${times[@]}" | sort -n | sed -n "$(( (repeat + 1) / 2 ))p")" "$repeat"
done
(cd "$work" && REPEAT="$repeat" node report_load.mjs "${pages[@]}")
