#!/usr/bin/env bash
# A MariaDB Galera cluster of three nodes on 127.0.0.1, for the tests and for users who
# want to see the library on a cluster. Each node has its own data directory, unix socket
# and ports; no system service is involved.
#
#   scripts/cluster.sh start [N]   install what is missing, start the nodes (or node N): the
#                                  first of a stopped cluster founds it, the others join one
#                                  at a time; wait until every started node is synced
#   scripts/cluster.sh stop [N]    stop the nodes (node 3 first, node 1 last) or node N
#   scripts/cluster.sh status      each node: running or not, its view of the cluster
#   scripts/cluster.sh env [N]     the CALCDATA_DB_* lines of node N (default 1), as
#                                  scripts/db.sh env prints them, and where the cluster is
#   scripts/cluster.sh client N    the mariadb client on node N (extra arguments passed on)
#
# CALCDATA_CLUSTER_DIR chooses where the nodes keep their data (default: .cluster in the
# checkout). Started as root, the nodes run as the user mysql (rsync state transfer refuses
# to run as root) and their directories belong to it.
#
# The nodes keep MariaDB's own defaults where a cluster does not need another value: the
# strict sql_mode of a server as Debian installs it (the library sets its session's mode
# itself), utf8mb4. lower_case_table_names=1 as on the project's private server, so that the
# tests can compare the statements sent with the design's texts.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
# The nodes' folder: in the checkout, unless the user mysql (under which root runs the nodes)
# cannot pass through the checkout's folder (a home folder closed to others): then in /tmp.
default_dir() {
  if [ "$(id -u)" = 0 ] && id mysql >/dev/null 2>&1 && ! runuser -u mysql -- test -x "$root"; then
    echo "/tmp/calcdata-cluster-$(printf '%s' "$root" | md5sum | cut -c1-12)"
  else
    echo "$root/.cluster"
  fi
}
dir=${CALCDATA_CLUSTER_DIR:-$(default_dir)}
nodes=3
provider=/usr/lib/galera/libgalera_smm.so

die() { echo "cluster.sh: $*" >&2; exit 1; }

node_dir() { echo "$dir/node$1"; }
sock() {
  local s
  s=$(node_dir "$1")/mysqld.sock
  # A unix socket path must stay under 107 characters.
  [ ${#s} -lt 100 ] || s=/tmp/calcdata-cluster-$(printf '%s' "$dir" | md5sum | cut -c1-12)-$1.sock
  echo "$s"
}
pidfile() { echo "$(node_dir "$1")/mariadbd.pid"; }

# Four ports a node: the client's, group communication, incremental and full state
# transfer. Chosen once per cluster directory, like the private server's.
ports() {
  if [ ! -f "$dir/ports" ]; then
    mkdir -p "$dir"
    local base=$((34000 + $(printf '%s' "$dir" | cksum | cut -d' ' -f1) % 1500)) p free
    while :; do
      free=1
      for p in $(seq "$base" $((base + 4 * nodes - 1))); do
        if (exec 3<>/dev/tcp/127.0.0.1/$p) 2>/dev/null; then free=0; break; fi
      done
      [ $free = 1 ] && break
      base=$((base + 4 * nodes))
    done
    echo "$base" >"$dir/ports"
  fi
  cat "$dir/ports"
}
port() { echo $(($(ports) + $1 - 1)); }              # client
gcomm_port() { echo $(($(ports) + nodes + $1 - 1)); }
ist_port() { echo $(($(ports) + 2 * nodes + $1 - 1)); }
sst_port() { echo $(($(ports) + 3 * nodes + $1 - 1)); }

client() { local n=$1; shift; mariadb --no-defaults -S "$(sock "$n")" -uroot "$@"; }

# A live server process: not a zombie that a killed node can leave, nor another program that
# took its number since.
alive() {
  [ -r "/proc/$1/stat" ] && [ "$(cut -d' ' -f3 "/proc/$1/stat")" != Z ] &&
    [ "$(cat "/proc/$1/comm" 2>/dev/null)" = mariadbd ]
}
running() {
  [ -f "$(pidfile "$1")" ] && alive "$(cat "$(pidfile "$1")")"
}
synced() {
  [ "$(client "$1" -N -e "SHOW STATUS LIKE 'wsrep_local_state_comment'" 2>/dev/null | cut -f2)" = Synced ]
}

as_root=0
[ "$(id -u)" = 0 ] && as_root=1
owner=$(id -un)
[ $as_root = 1 ] && owner=mysql

# Where the user mysql cannot reach the checkout (a home folder closed to others), the
# nodes could not open their files: say so instead of failing inside the server.
check_reachable() {
  [ $as_root = 1 ] || return 0
  runuser -u mysql -- test -w "$dir" ||
    die "the user mysql cannot write $dir; set CALCDATA_CLUSTER_DIR to a folder it can reach"
}

write_config() {
  local n=$1 d all=""
  d=$(node_dir "$n")
  for i in $(seq 1 $nodes); do all+="${all:+,}127.0.0.1:$(gcomm_port "$i")"; done
  cat >"$d/my.cnf" <<EOF
[mysqld]
user = $owner
datadir = $d/data
socket = $(sock "$n")
port = $(port "$n")
bind-address = 127.0.0.1
pid-file = $(pidfile "$n")
log-error = $d/error.log
skip-name-resolve
character-set-server = utf8mb4
collation-server = utf8mb4_general_ci
lower_case_table_names = 1
max_connections = 500
innodb_buffer_pool_size = 256M
innodb_flush_log_at_trx_commit = 2
default_storage_engine = InnoDB
binlog_format = ROW
innodb_autoinc_lock_mode = 2
wsrep_on = ON
wsrep_provider = $provider
wsrep_cluster_name = calcdata
wsrep_cluster_address = gcomm://$all
wsrep_node_name = node$n
wsrep_node_address = 127.0.0.1:$(gcomm_port "$n")
wsrep_provider_options = "gmcast.listen_addr=tcp://127.0.0.1:$(gcomm_port "$n");ist.recv_addr=127.0.0.1:$(ist_port "$n");gcache.size=128M"
wsrep_sst_method = rsync
wsrep_sst_receive_address = 127.0.0.1:$(sst_port "$n")
EOF
}

start_node() {
  local n=$1 new=$2 d
  d=$(node_dir "$n")
  running "$n" && return 0
  mkdir -p "$d/data"
  write_config "$n"
  if [ "$new" = 1 ] && [ ! -d "$d/data/mysql" ]; then
    [ $as_root = 1 ] && chown -R mysql:mysql "$dir"
    mariadb-install-db --defaults-file="$d/my.cnf" --auth-root-authentication-method=normal \
      --skip-test-db --wsrep-on=OFF >"$d/install.log" 2>&1 ||
      { cat "$d/install.log" >&2; die "mariadb-install-db failed for node $n"; }
  fi
  [ $as_root = 1 ] && chown -R mysql:mysql "$dir"
  rm -f "$(pidfile "$n")"
  local args=()
  if [ "$new" = 1 ]; then
    # Founding a cluster that nobody runs: this node's state is the cluster's.
    [ -f "$d/data/grastate.dat" ] && sed -i 's/^safe_to_bootstrap: 0/safe_to_bootstrap: 1/' "$d/data/grastate.dat"
    args=(--wsrep-new-cluster)
  fi
  (mariadbd --defaults-file="$d/my.cnf" "${args[@]}" </dev/null >/dev/null 2>&1 &)
  # A joiner takes a state transfer first; the whole database at most once.
  for _ in $(seq 1 1200); do
    if synced "$n"; then return 0; fi
    if [ -f "$(pidfile "$n")" ] && ! running "$n"; then break; fi
    sleep 0.1
  done
  tail -n 30 "$d/error.log" >&2 || true
  die "node $n did not come up synced within 120 s (its log: $d/error.log)"
}

start() {
  command -v mariadbd >/dev/null && [ -f "$provider" ] && command -v wsrep_sst_rsync >/dev/null &&
    command -v rsync >/dev/null || "$root/scripts/install-deps.sh" cluster
  dir=${CALCDATA_CLUSTER_DIR:-$(default_dir)} # the user mysql may be new
  mkdir -p "$dir"
  [ $as_root = 1 ] && chown mysql:mysql "$dir"
  check_reachable
  local which=("$@") founder="" n
  [ ${#which[@]} -gt 0 ] || which=($(seq 1 $nodes))
  for n in $(seq 1 $nodes); do
    if running "$n"; then founder=$n; fi
  done
  for n in "${which[@]}"; do
    [ "$n" -ge 1 ] && [ "$n" -le $nodes ] 2>/dev/null || die "no node $n (1 to $nodes)"
    if [ -z "$founder" ]; then
      start_node "$n" 1
      founder=$n
    else
      start_node "$n" 0
    fi
  done
}

stop_node() {
  local n=$1 pid
  [ -f "$(pidfile "$n")" ] || return 0
  pid=$(cat "$(pidfile "$n")")
  kill "$pid" 2>/dev/null || true
  for _ in $(seq 1 600); do
    alive "$pid" || { rm -f "$(pidfile "$n")"; return 0; }
    sleep 0.1
  done
  kill -9 "$pid" 2>/dev/null || true
  rm -f "$(pidfile "$n")"
}

stop() {
  if [ $# -gt 0 ]; then
    stop_node "$1"
  else
    for n in $(seq $nodes -1 1); do stop_node "$n"; done
  fi
}

status() {
  local n all=0
  for n in $(seq 1 $nodes); do
    if running "$n"; then
      echo "node $n: running on port $(port "$n"), $(client "$n" -N -e "SELECT CONCAT(
        (SELECT VARIABLE_VALUE FROM information_schema.GLOBAL_STATUS WHERE VARIABLE_NAME='wsrep_local_state_comment'),
        ', cluster of ',
        (SELECT VARIABLE_VALUE FROM information_schema.GLOBAL_STATUS WHERE VARIABLE_NAME='wsrep_cluster_size'))" 2>&1)"
    else
      echo "node $n: stopped"
      all=1
    fi
  done
  return $all
}

env_lines() {
  local n=${1:-1} list="" i
  [ "$n" -ge 1 ] && [ "$n" -le $nodes ] 2>/dev/null || die "no node $n (1 to $nodes)"
  for i in $(seq 1 $nodes); do list+="${list:+,}$(sock "$i")"; done
  echo "export CALCDATA_DB_SOCKET='$(sock "$n")'"
  echo "export CALCDATA_DB_HOST=127.0.0.1"
  echo "export CALCDATA_DB_PORT=$(port "$n")"
  echo "export CALCDATA_DB_USER=root"
  echo "export CALCDATA_CLUSTER_DIR='$dir'"
  echo "export CALCDATA_CLUSTER_SOCKETS='$list'"
}

case "${1:-}" in
  start) shift; start "$@" ;;
  stop) shift; stop "$@" ;;
  status) status ;;
  env) shift; env_lines "$@" ;;
  client) shift; n=${1:-1}; shift || true; client "$n" "$@" ;;
  *) echo "usage: $0 start [N]|stop [N]|status|env [N]|client N" >&2; exit 2 ;;
esac
