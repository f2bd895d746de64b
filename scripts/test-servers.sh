#!/usr/bin/env bash
# Runs a command with the database servers of the tests: scripts/test-servers.sh COMMAND [ARGUMENT…]
#
# Starts a private PostgreSQL cluster on a loopback port, tells the command of it by environment
# variables, and stops it when the command has ended, whichever way. The result is the command's.
#
#   KORVANE_POSTGRES           postgresql://127.0.0.1:PORT; one that is set already is used as it is
#   KORVANE_POSTGRES_USER      a superuser of it
#   KORVANE_POSTGRES_PASSWORD
#
# A Microsoft SQL Server is used where the caller names one: KORVANE_MSSQL (host, host,port or
# host\instance), KORVANE_MSSQL_USER, KORVANE_MSSQL_PASSWORD. Tests of servers that are not there
# skip with a message.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

if [ -n "${KORVANE_POSTGRES:-}" ]; then
  exec "$@"
fi

# The newest server that is installed; Debian keeps its programs out of the path.
server_programs() {
  local folders
  folders=$(ls -d /usr/lib/postgresql/*/bin /usr/pgsql-*/bin 2>/dev/null | sort -V | tail -n 1) || true
  [ -n "$folders" ] || folders=$(dirname "$(command -v initdb)" 2>/dev/null) || true
  [ -x "$folders/initdb" ] && printf '%s' "$folders"
}
if ! programs=$(server_programs); then
  echo "No PostgreSQL server is installed: its tests will be skipped." >&2
  exec "$@"
fi

# The server refuses to run as root.
as_owner=()
if [ "$(id -u)" -eq 0 ]; then
  owner=nobody
  getent passwd postgres >/dev/null && owner=postgres
  as_owner=(runuser -u "$owner" --)
fi

make_folder() { # below build/, or below /tmp where the owner cannot reach that
  mkdir -p "$root/build"
  folder=$(mktemp -d "$root/build/postgres.XXXXXX")
  [ ${#as_owner[@]} -eq 0 ] && return
  chown "$owner" "$folder"
  "${as_owner[@]}" test -w "$folder" && return
  rmdir "$folder"
  folder=$(mktemp -d "${TMPDIR:-/tmp}/korvane-postgres.XXXXXX")
  chown "$owner" "$folder"
}

control() { (cd "$folder" && "${as_owner[@]}" "$programs/pg_ctl" -D "$folder/data" "$@"); }

stop() {
  trap - EXIT
  control -m immediate -w stop >/dev/null 2>&1 || true
  rm -rf "$folder"
}

start() {
  local attempt
  for attempt in 1 2 3 4 5 6 7 8; do
    port=$((20000 + RANDOM % 12000))
    control -w -t 60 -l "$folder/server.log" -o "-p $port" start >/dev/null 2>&1 && return
  done
  cat "$folder/server.log" >&2
  return 1
}

make_folder
trap stop EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP
trap 'exit 141' PIPE # a reader of the output that was ended as well

password=$(od -An -N12 -tx1 /dev/urandom | tr -d ' \n')
(umask 077 && printf '%s\n' "$password" >"$folder/password")
[ ${#as_owner[@]} -eq 0 ] || chown "$owner" "$folder/password"
(cd "$folder" && "${as_owner[@]}" "$programs/initdb" -D "$folder/data" -U sa -A scram-sha-256 \
  --pwfile="$folder/password" --encoding=UTF8 --locale=C --no-sync >"$folder/initdb.log" 2>&1) ||
  { cat "$folder/initdb.log" >&2; exit 1; }
# Nothing in it is worth keeping: it need not reach the disk.
cat >>"$folder/data/postgresql.conf" <<CONF
listen_addresses = '127.0.0.1'
unix_socket_directories = ''
max_connections = 200
shared_buffers = 64MB
fsync = off
synchronous_commit = off
full_page_writes = off
CONF
start

export KORVANE_POSTGRES="postgresql://127.0.0.1:$port"
export KORVANE_POSTGRES_USER=sa
export KORVANE_POSTGRES_PASSWORD="$password"
result=0
"$@" || result=$?
exit "$result"
