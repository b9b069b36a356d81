#!/usr/bin/env bash
# The main job of `make run`, given the release build directory: mine the
# bundled sample order log into a model, show its ten strongest rules and
# predict the next purchases of one customer.
set -euo pipefail
build_dir="$1"
cd "$(dirname "$0")/.."
seqlattice="$build_dir/cli/seqlattice"
model="$build_dir/sample.model"

# Prints the command as a person would type it, then runs it.
show() {
  local line="\$ seqlattice"
  for arg in "$@"; do
    case "$arg" in
      *[\ \;]*) line+=" \"$arg\"" ;;
      *) line+=" $arg" ;;
    esac
  done
  echo "$line"
  "$seqlattice" "$@"
  echo
}

show mine data/sample/orders.csv -o "$model" --min-support 0.03
show rules "$model" --top 10 --min-cause 0.2
show predict "$model" --history "espresso machine,milk frother;coffee beans"
