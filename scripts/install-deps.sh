#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the demo need. Quick when
# everything is already there: only dpkg is asked then.
#
#   scripts/install-deps.sh           what the build, the tests and the demo need
#   scripts/install-deps.sh cluster   that, and what scripts/cluster.sh needs
set -euo pipefail

packages=(
  qt6-base-dev libqt6sql6-mysql          # Qt 6 Core, Sql, Widgets and the MySQL driver
  libmariadb-dev                          # the client library under that driver, whose rows the library reads
  mariadb-server-core mariadb-client-core # the private server and its client (no system service)
  libeigen3-dev                           # sparse linear algebra of the demo's load-flow solver
  cmake ninja-build g++ pkg-config
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  clang libclang-rt-dev                   # libFuzzer and the sanitizers' runtimes for the fuzz targets (clang's own version)
  fonts-wqy-microhei                      # a CJK font: the dialogs' Chinese texts in offscreen screenshots
  locales                                 # locale sources: a test makes a locale with a decimal comma from them
)
if [ "${1:-}" = cluster ]; then
  packages+=(
    galera-4                              # the replication provider of a MariaDB Galera cluster
    mariadb-server                        # the state-transfer scripts (wsrep_sst_rsync) come only with it
    rsync lsof                            # what those scripts run
  )
fi

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "install-deps: installing ${missing[*]}" >&2
sudo=()
[ "$(id -u)" = 0 ] || sudo=(sudo)
export DEBIAN_FRONTEND=noninteractive
# mariadb-server would start a system service of its own on the way in: a policy-rc.d that
# refuses every start keeps it from doing so while this install runs (one that stands
# already is left as it is).
policy=/usr/sbin/policy-rc.d
if [ ! -e $policy ]; then
  printf '#!/bin/sh\nexit 101\n' | "${sudo[@]}" tee $policy >/dev/null
  "${sudo[@]}" chmod +x $policy
  trap '"${sudo[@]}" rm -f $policy' EXIT
fi
if ! "${sudo[@]}" apt-get install -y --no-install-recommends "${missing[@]}"; then
  "${sudo[@]}" apt-get update
  "${sudo[@]}" apt-get install -y --no-install-recommends "${missing[@]}"
fi
