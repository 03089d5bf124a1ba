#!/usr/bin/env bash
# The main job: installs what is missing, starts the private MariaDB, builds the
# library and the demo, and runs the demo. Arguments are passed to the demo
# (run it with --help to see them).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"

scripts/install-deps.sh
scripts/db.sh start
eval "$(scripts/db.sh env)"
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j "$(nproc)" --target calcdata_demo
exec build/apps/calcdata_demo "$@"
