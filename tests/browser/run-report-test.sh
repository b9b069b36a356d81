#!/usr/bin/env bash
# The browser tests of the HTML model report (a CTest): mines the bundled
# sample, writes its report and runs report.test.mjs in Debian's headless
# Chromium. Exits 77 (CTest's skip) with a message when the machine has no
# Chromium or no Node.js; tools/install-deps.sh installs both.
# Usage: run-report-test.sh SEQLATTICE_CLI SOURCE_DIR WORK_DIR
set -euo pipefail
cli=$1 source_dir=$2 work=$3
chromium=${SEQLATTICE_CHROMIUM:-/usr/bin/chromium}

if [ ! -x "$chromium" ]; then
  echo "skipped: no Chromium at $chromium (apt-get install chromium)"
  exit 77
fi
if ! command -v node >/dev/null || ! command -v npm >/dev/null; then
  echo "skipped: the browser tests need Node.js and npm"
  exit 77
fi

mkdir -p "$work/output"
# puppeteer-core only (no browser download), at the locked version; installed
# again only when the lock file changes.
if ! cmp -s "$source_dir/tests/browser/package-lock.json" "$work/package-lock.json" ||
   [ ! -d "$work/node_modules/puppeteer-core" ]; then
  cp "$source_dir/tests/browser/package.json" "$source_dir/tests/browser/package-lock.json" "$work/"
  (cd "$work" && timeout 180 npm ci --no-audit --no-fund --loglevel=error)
fi
cp "$source_dir/tests/browser/report.test.mjs" "$work/"

(cd "$source_dir" && "$cli" mine data/sample/orders.csv -o "$work/sample.model" \
  --min-support 0.03 >/dev/null)
(cd "$work" && "$cli" report sample.model -o output/report.html &&
  "$cli" report sample.model -o output/report-empty.html --min-support 0.99)

cd "$work"
REPORT_HTML="$work/output/report.html" SCREENSHOT_DIR="$work/output" \
  CHROMIUM="$chromium" timeout 180 node --test --test-timeout=60000 report.test.mjs
echo "screenshots: $work/output/report*.png"
