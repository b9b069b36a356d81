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
# The Python package: built with pybind11 for Debian's /usr/bin/python3.
need_py() { /usr/bin/python3 -c "import $1" >/dev/null 2>&1 || missing+=("$2"); }
need_file /usr/bin/python3 python3
need_file /usr/lib/cmake/pybind11/pybind11Config.cmake pybind11-dev
need_py pybind11 python3-pybind11
python_include=$(/usr/bin/python3 -c \
  "import sysconfig; print(sysconfig.get_paths()['include'])" 2>/dev/null || true)
need_file "${python_include:-/nonexistent}/Python.h" python3-dev
need_py pandas python3-pandas
need_py pytest python3-pytest
need_py venv python3-venv
need_py ensurepip python3-venv
need_py setuptools python3-setuptools
need_py wheel python3-wheel
need_py pip python3-pip
# Distributed mining and its tests run on Dask.
need_py distributed python3-distributed
# The report's browser tests (Debian's Chromium and Firefox ESR, driven by
# puppeteer-core from npm) and the rules graphs in the README (Graphviz).
need_cmd chromium chromium
need_cmd firefox-esr firefox-esr
need_cmd dot graphviz
need_cmd node nodejs
need_cmd npm npm

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "installing missing packages: ${missing[*]}"
sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
