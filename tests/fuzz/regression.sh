#!/usr/bin/env bash
# A fuzz target's regression run: every input of its corpus, then mutations of them for a
# fixed number of runs in all, from a fixed seed. What the run finds new goes to a
# scratch folder, so the corpus in the repository stays as it is.
#
#   regression.sh TARGET CORPUS RUNS
set -euo pipefail
target=$1 corpus=$2 runs=$3
[ -d "$corpus" ] && [ -n "$(ls -A "$corpus")" ] || { echo "regression.sh: no corpus in $corpus" >&2; exit 1; }
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
"$target" -runs="$runs" -seed=1 -max_len=4096 -print_final_stats=1 "$scratch" "$corpus"
