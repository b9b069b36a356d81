# Entry points for people and CI. `make run` and `make test` work on a fresh
# Debian machine: they install the build tools with apt-get when missing.

BUILD_DIR    ?= build
RELEASE_DIR  := $(BUILD_DIR)/release
ASAN_DIR     := $(BUILD_DIR)/asan
JOBS         ?= $(shell nproc 2>/dev/null || echo 2)
CMAKE_COMMON := -G Ninja -DSEQLATTICE_WERROR=ON
# The Python package is built for and tested with Debian's interpreter, not
# whatever python3 comes first on PATH.
PYTHON       ?= /usr/bin/python3

# Sanitizer reports end the test run with a failure.
export ASAN_OPTIONS  ?= detect_leaks=1:abort_on_error=0:halt_on_error=1:strict_string_checks=1
export UBSAN_OPTIONS ?= print_stacktrace=1:halt_on_error=1
export LSAN_OPTIONS  ?= report_objects=0

.PHONY: all deps configure build release asan python test test-release \
        test-asan test-python run format clean

all: build

deps:
	@./tools/install-deps.sh

configure: deps
	cmake -S . -B $(RELEASE_DIR) $(CMAKE_COMMON) -DCMAKE_BUILD_TYPE=Release \
	  -DSEQLATTICE_BUILD_PYTHON=ON -DSEQLATTICE_PYTHON=$(PYTHON)

build release: configure
	cmake --build $(RELEASE_DIR) -j $(JOBS)

asan: deps
	cmake -S . -B $(ASAN_DIR) $(CMAKE_COMMON) -DCMAKE_BUILD_TYPE=Debug \
	  -DSEQLATTICE_SANITIZE=ON -DSEQLATTICE_BUILD_BENCH=OFF
	cmake --build $(ASAN_DIR) -j $(JOBS)

test-release: release
	ctest --test-dir $(RELEASE_DIR) --output-on-failure -j $(JOBS)

test-asan: asan
	ctest --test-dir $(ASAN_DIR) --output-on-failure -j $(JOBS)

# The Python package in $(RELEASE_DIR)/python, importable with
# PYTHONPATH=$(RELEASE_DIR)/python (README: Python).
python: configure
	cmake --build $(RELEASE_DIR) -j $(JOBS) --target seqlattice_python seqlattice_cli

# pytest ends with status 5 when it collects no test: the suite went missing,
# which fails the run like any other failure.
test-python: python
	SEQLATTICE_CLI=$(RELEASE_DIR)/cli/seqlattice PYTHONPATH=$(RELEASE_DIR)/python \
	  $(PYTHON) -m pytest -q -p no:cacheprovider python/tests

# The whole suite, plain and under AddressSanitizer + UBSan + LeakSanitizer,
# then the Python package's tests.
test: test-release test-asan test-python

# Only the library and the tool: a newcomer sees the first result quickly.
run: configure
	cmake --build $(RELEASE_DIR) -j $(JOBS) --target seqlattice_cli
	./tools/run-main-job.sh $(RELEASE_DIR)

format:
	find src cli bench tests fuzz examples -name '*.h' -o -name '*.cpp' | xargs -r clang-format -i

clean:
	rm -rf $(BUILD_DIR)
