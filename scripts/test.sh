#!/usr/bin/env bash
# The test command: installs what is missing, starts the private MariaDB, builds and
# runs every test, then builds and runs the whole suite again under AddressSanitizer
# and UndefinedBehaviorSanitizer.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
jobs=$(nproc)

scripts/install-deps.sh
scripts/db.sh start
eval "$(scripts/db.sh env)"
export CI=${CI:-true}

run_suite() {
  local dir=$1; shift
  cmake -S . -B "$dir" -G Ninja "$@" >/dev/null
  cmake --build "$dir" -j "$jobs"
  (cd "$dir" && ctest --output-on-failure -j "$jobs")
}

start=$(date +%s)
run_suite build -DCMAKE_BUILD_TYPE=RelWithDebInfo
run_suite build-asan -DCMAKE_BUILD_TYPE=Debug -DCALCDATA_SANITIZE=ON -DCALCDATA_BUILD_BENCH=OFF
echo "test.sh: all tests passed, plain and sanitized, in $(( $(date +%s) - start )) s"
