#!/usr/bin/env bash
# The browser tests of the HTML model report (a CTest per browser): mines the
# bundled sample, writes its report and runs report.test.mjs (what the page
# renders and how it answers) and access.test.mjs (the axe-core audit and the
# keyboard) in Debian's headless Chromium or Firefox ESR. Exits 77 (CTest's
# skip) with a message when the machine has no such browser or no Node.js;
# tools/install-deps.sh installs them.
# Usage: run-report-test.sh chromium|firefox SEQLATTICE_CLI SOURCE_DIR WORK_DIR
set -euo pipefail
browser=$1 cli=$2 source_dir=$3 work=$4
case "$browser" in
  chromium) executable=${SEQLATTICE_CHROMIUM:-/usr/bin/chromium} package=chromium ;;
  firefox) executable=${SEQLATTICE_FIREFOX:-/usr/bin/firefox-esr} package=firefox-esr ;;
  *) echo "usage: run-report-test.sh chromium|firefox CLI SOURCE_DIR WORK_DIR" >&2; exit 2 ;;
esac

if [ ! -x "$executable" ]; then
  echo "skipped: no $browser at $executable (apt-get install $package)"
  exit 77
fi
if ! command -v node >/dev/null || ! command -v npm >/dev/null; then
  echo "skipped: the browser tests need Node.js and npm"
  exit 77
fi

# puppeteer-core and axe-core only (no browser download), at the locked
# versions; installed again only when the lock file changes. The two browsers'
# tests share these (CTest runs them one at a time).
if ! cmp -s "$source_dir/tests/browser/package-lock.json" "$work/package-lock.json" ||
   [ ! -d "$work/node_modules/puppeteer-core" ] || [ ! -d "$work/node_modules/axe-core" ]; then
  mkdir -p "$work"
  cp "$source_dir/tests/browser/package.json" "$source_dir/tests/browser/package-lock.json" "$work/"
  (cd "$work" && timeout 180 npm ci --no-audit --no-fund --loglevel=error)
fi
cp "$source_dir"/tests/browser/*.mjs "$work/"

output="$work/output/$browser"
rm -rf "$output"
mkdir -p "$output"
(cd "$source_dir" && "$cli" mine data/sample/orders.csv -o "$output/sample.model" \
  --min-support 0.03 >/dev/null)
(cd "$output" && "$cli" report sample.model -o report.html &&
  "$cli" report sample.model -o report-empty.html --min-support 0.99)

cd "$work"
BROWSER="$browser" BROWSER_PATH="$executable" REPORT_HTML="$output/report.html" \
  SCREENSHOT_DIR="$output" timeout 240 node --test --test-concurrency=1 \
  --test-timeout=60000 report.test.mjs access.test.mjs
echo "screenshots: $output/report*.png"
