#!/usr/bin/env bash
# Installs with apt-get the build and test tools that are missing, and nothing
# when everything is present (so it is quick and needs no network then).
set -euo pipefail

missing=()
need_cmd() { command -v "$1" >/dev/null 2>&1 || missing+=("$2"); }
need_file() { [ -e "$1" ] || missing+=("$2"); }

need_cmd cmake cmake
need_cmd ninja ninja-build
need_cmd g++ g++
need_cmd xmllint libxml2-utils
need_file /usr/include/gtest/gtest.h libgtest-dev
need_file /usr/include/gmock/gmock.h libgmock-dev
need_file /usr/include/benchmark/benchmark.h libbenchmark-dev
need_file /usr/include/CLI/CLI.hpp libcli11-dev
need_file /usr/include/nlohmann/json.hpp nlohmann-json3-dev

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "installing missing packages: ${missing[*]}"
sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
