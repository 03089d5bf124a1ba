#!/usr/bin/env bash
# The project's private MariaDB server: own data directory, unix socket and a
# 127.0.0.1 port, no system service. Used by the tests, the demo and the benchmarks.
#
#   scripts/db.sh start    initialise on first use, start (or reuse the running one), wait
#   scripts/db.sh stop     stop it by its pid
#   scripts/db.sh status   say whether it runs
#   scripts/db.sh env      print the export lines that tests and the demo read
#   scripts/db.sh client   open the mariadb client on it (extra arguments are passed on)
#
# CALCDATA_DB_DIR chooses the data directory (default: .mariadb in the checkout).
# The sql_mode is fixed here; README.md says why. With CALCDATA_DB_AS_IT_COMES=1 (and a
# data directory of its own) the server keeps MariaDB's own defaults instead: a strict
# sql_mode, lower_case_table_names=0 and latin1, a server such as a user may bring, on
# which the tests run the study program.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
dir=${CALCDATA_DB_DIR:-$root/.mariadb}
data=$dir/data
pidfile=$dir/mariadbd.pid
logfile=$dir/error.log
portfile=$dir/port

# The statements of the library were written for the lenient servers of their time:
# values cut to their column width, omitted columns left to their defaults. Strict
# mode would refuse them, so the server keeps the old default and nothing more.
SQL_MODE=NO_ENGINE_SUBSTITUTION
# Table names compare without regard to case, as on the servers the statements were
# written for: they name one table in two spellings (CDB_NodeBAK beside CDB_NODEBAK,
# T3w beside T3W, s4_%d beside S4_%d). The setting is fixed when the data directory
# is made, and the server must start with the same value.
LOWER_CASE_TABLE_NAMES=1

# A unix socket path must stay under 107 characters; fall back to /tmp for deep checkouts.
socket=$dir/mysqld.sock
if [ ${#socket} -ge 100 ]; then
  socket=/tmp/calcdata-$(printf '%s' "$dir" | md5sum | cut -c1-12).sock
fi

client() { mariadb --no-defaults -S "$socket" -uroot "$@"; }

running() {
  [ -f "$pidfile" ] && kill -0 "$(cat "$pidfile")" 2>/dev/null && client -e 'SELECT 1' >/dev/null 2>&1
}

pick_port() {
  # A free port, stable per data directory where possible, so that two checkouts
  # on one machine do not collide.
  local p=$((33100 + $(printf '%s' "$dir" | cksum | cut -d' ' -f1) % 800))
  while (exec 3<>/dev/tcp/127.0.0.1/$p) 2>/dev/null; do p=$((p + 1)); done
  echo "$p"
}

user_args=()
[ "$(id -u)" = 0 ] && user_args=(--user=root)
settings=(--sql-mode="$SQL_MODE" --lower-case-table-names=$LOWER_CASE_TABLE_NAMES
          --character-set-server=utf8mb4 --collation-server=utf8mb4_general_ci)
install_settings=(--lower-case-table-names=$LOWER_CASE_TABLE_NAMES)
if [ "${CALCDATA_DB_AS_IT_COMES:-}" = 1 ]; then
  settings=()
  install_settings=()
fi

start() {
  if running; then return 0; fi
  mkdir -p "$dir"
  if [ ! -d "$data/mysql" ]; then
    rm -rf "$data"
    mariadb-install-db --no-defaults --datadir="$data" "${user_args[@]}" \
      --auth-root-authentication-method=normal --skip-test-db \
      "${install_settings[@]}" >"$dir/install.log" 2>&1 || {
      cat "$dir/install.log" >&2
      echo "db.sh: mariadb-install-db failed" >&2
      exit 1
    }
  fi
  [ -f "$portfile" ] || pick_port >"$portfile"
  # A stale pid file from a killed server would make a new one refuse to start.
  rm -f "$pidfile"
  (mariadbd --no-defaults "${user_args[@]}" --datadir="$data" --socket="$socket" \
    --port="$(cat "$portfile")" --bind-address=127.0.0.1 --pid-file="$pidfile" \
    --log-error="$logfile" --skip-name-resolve "${settings[@]}" \
    --max-connections=500 --innodb-buffer-pool-size=512M --innodb-flush-log-at-trx-commit=2 \
    </dev/null >/dev/null 2>&1 &)
  for _ in $(seq 1 300); do
    if running; then return 0; fi
    sleep 0.1
  done
  tail -n 20 "$logfile" >&2 || true
  echo "db.sh: the server did not come up within 30 s" >&2
  exit 1
}

stop() {
  [ -f "$pidfile" ] || return 0
  local pid
  pid=$(cat "$pidfile")
  kill "$pid" 2>/dev/null || true
  for _ in $(seq 1 300); do
    kill -0 "$pid" 2>/dev/null || { rm -f "$pidfile"; return 0; }
    sleep 0.1
  done
  kill -9 "$pid" 2>/dev/null || true
  rm -f "$pidfile"
}

case "${1:-}" in
  start) start ;;
  stop) stop ;;
  status) if running; then echo "running: socket $socket, port $(cat "$portfile")"; else echo "stopped"; exit 1; fi ;;
  env)
    echo "export CALCDATA_DB_SOCKET='$socket'"
    echo "export CALCDATA_DB_HOST=127.0.0.1"
    echo "export CALCDATA_DB_PORT=$(cat "$portfile" 2>/dev/null || echo 0)"
    echo "export CALCDATA_DB_USER=root"
    ;;
  client) shift; client "$@" ;;
  *) echo "usage: $0 start|stop|status|env|client" >&2; exit 2 ;;
esac
