#!/usr/bin/env bash
# The test command: installs what is missing, starts the private MariaDB, builds and
# runs every test, then builds and runs the whole suite again under AddressSanitizer
# and UndefinedBehaviorSanitizer, and finally runs the plain suite a third time on node 1
# of a three-node MariaDB Galera cluster (scripts/cluster.sh), with the tests that look at
# the other nodes. The cluster stays up afterwards (scripts/cluster.sh stop ends it).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
jobs=$(nproc)

scripts/install-deps.sh
scripts/db.sh start
eval "$(scripts/db.sh env)"
export CI=${CI:-true}
# Beside it a MariaDB with nothing but its own defaults (strict sql_mode,
# lower_case_table_names=0), on which the tests run the study program through --server.
as_it_comes=(env CALCDATA_DB_DIR="$root/.mariadb-as-it-comes" CALCDATA_DB_AS_IT_COMES=1)
"${as_it_comes[@]}" scripts/db.sh start
export CALCDATA_OTHER_SERVERS=127.0.0.1:$("${as_it_comes[@]}" scripts/db.sh env | sed -n 's/.*DB_PORT=//p')

# The tests of the cluster itself (label "cluster") run in the cluster run only.
run_suite() {
  local dir=$1; shift
  cmake -S . -B "$dir" -G Ninja "$@" >/dev/null
  cmake --build "$dir" -j "$jobs"
  (cd "$dir" && ctest --output-on-failure -j "$jobs" -LE cluster)
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

# The cluster run. A cluster that cannot be started or a node that cannot be reached fails
# the command, as the private server does; every test that skips says why, and the count
# below says how many did.
cluster_start=$(date +%s)
scripts/cluster.sh start
results=build/cluster-results
rm -rf "$results"
(
  eval "$(scripts/cluster.sh env 1)"
  export CALCDATA_OTHER_SERVERS=$CALCDATA_OTHER_SERVERS,127.0.0.1:$(scripts/cluster.sh env 2 | sed -n 's/.*DB_PORT=//p')
  export GTEST_OUTPUT=xml:$root/$results/
  cd build && ctest --output-on-failure -j "$jobs"
)
programs=$(ls "$results"/*.xml | wc -l)
tests=$(cat "$results"/*.xml | grep -c '<testcase ')
skips=$(cat "$results"/*.xml | grep -c 'result="skipped"' || true)
echo "test.sh: cluster run on node 1: all $programs test programs passed ($tests tests," \
     "$skips skipped) in $(( $(date +%s) - cluster_start )) s"
if [ "$skips" != 0 ]; then
  grep -ho '<skipped message="[^"]*"' "$results"/*.xml |
    sed -e 's/^<skipped message="/  skipped: /' -e 's/"$//' -e 's/&#x0A;/: /g' | sort | uniq -c
fi
