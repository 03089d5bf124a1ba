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

# The fuzz targets' regression runs need clang++ with libFuzzer, which install-deps.sh
# installs. Only where a fuzz target truly cannot be linked does the sanitized build leave
# them out, and says so.
fuzz=ON
if ! printf 'extern "C" int LLVMFuzzerTestOneInput(const unsigned char*, unsigned long) { return 0; }\n' |
    clang++ -x c++ -fsanitize=fuzzer,address,undefined -o /dev/null - 2>/dev/null; then
  fuzz=OFF
  echo "test.sh: clang++ cannot link a libFuzzer target (packages clang, libclang-rt-dev):" \
       "the fuzz regression runs are SKIPPED" >&2
fi

start=$(date +%s)
run_suite build -DCMAKE_BUILD_TYPE=RelWithDebInfo
run_suite build-asan -DCMAKE_BUILD_TYPE=Debug -DCALCDATA_SANITIZE=ON -DCALCDATA_BUILD_BENCH=OFF \
  -DCALCDATA_FUZZ=$fuzz
skipped=""
[ "$fuzz" = ON ] || skipped=" (fuzz regression runs SKIPPED: no clang++ with libFuzzer)"
echo "test.sh: all tests passed, plain and sanitized, in $(( $(date +%s) - start )) s$skipped"
