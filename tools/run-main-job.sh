#!/usr/bin/env bash
# The main job of `make run`, given the release build directory.
set -euo pipefail
build_dir="$1"
exec "$build_dir/examples/basic_host"
