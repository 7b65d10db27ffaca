#!/usr/bin/env bash
# Starts or stops the PostgreSQL server the tests work against: a cluster of its own in a
# temporary folder, on a free local port, run as an unprivileged user when we are root.
#   test-server.sh start <state folder>   writes <state folder>/Tarvik-server.ini
#   test-server.sh stop <state folder>
# The connection file names the maintenance database "postgres" and the login "shop", which
# owns nothing but may create databases: each test makes its own and drops it.
set -euo pipefail
action=$1
state=$2
bin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -1)
if [ -z "$bin" ]; then
  echo "PostgreSQL is not installed (Debian package postgresql)" >&2
  exit 1
fi

as_owner() {
  if [ "$(id -u)" -eq 0 ]; then
    runuser -u postgres -- "$@"
  else
    "$@"
  fi
}

stop() {
  if [ -f "$state/datadir" ]; then
    data=$(cat "$state/datadir")
    as_owner "$bin/pg_ctl" -D "$data" -m immediate stop >/dev/null 2>&1 || true
    rm -rf "$data"
  fi
  rm -rf "$state"
}

case "$action" in
start)
  stop
  mkdir -p "$state"
  data=$(mktemp -d /tmp/tarvik-pg.XXXXXX)
  echo "$data" > "$state/datadir"
  [ "$(id -u)" -eq 0 ] && chown postgres: "$data"
  echo "tarvik-test" > "$data/pw"
  as_owner "$bin/initdb" -D "$data/cluster" -U tarvik --pwfile="$data/pw" --auth-local=trust \
    --auth-host=scram-sha-256 -E UTF8 --locale=C.UTF-8 >"$data/initdb.log" 2>&1 \
    || { cat "$data/initdb.log" >&2; exit 1; }
  for attempt in $(seq 1 20); do
    port=$((20000 + RANDOM % 30000))
    (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null && continue
    if as_owner "$bin/pg_ctl" -D "$data/cluster" -l "$data/server.log" -w -t 60 \
         -o "-p $port -k $data -c listen_addresses=127.0.0.1 -c fsync=off -c max_connections=60" start >/dev/null; then
      as_owner "$bin/psql" -h "$data" -p "$port" -U tarvik -d postgres -qAt \
        -c "CREATE ROLE shop LOGIN CREATEDB PASSWORD 'shop-test'" >/dev/null
      printf '[server]\nhost=127.0.0.1\nport=%s\ndatabase=postgres\nuser=shop\npassword=shop-test\n' "$port" \
        > "$state/Tarvik-server.ini"
      exit 0
    fi
  done
  cat "$data/server.log" >&2 || true
  exit 1
  ;;
stop)
  stop
  ;;
*)
  echo "usage: $0 start|stop <state folder>" >&2
  exit 2
  ;;
esac
