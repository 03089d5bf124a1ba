#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the demo need. Quick when
# everything is already there: only dpkg is asked then.
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
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "install-deps: installing ${missing[*]}" >&2
sudo=()
[ "$(id -u)" = 0 ] || sudo=(sudo)
export DEBIAN_FRONTEND=noninteractive
if ! "${sudo[@]}" apt-get install -y --no-install-recommends "${missing[@]}"; then
  "${sudo[@]}" apt-get update
  "${sudo[@]}" apt-get install -y --no-install-recommends "${missing[@]}"
fi
