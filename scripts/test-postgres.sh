#!/usr/bin/env bash
# Runs the demo's PostgreSQL test against a real server on this machine: installs PostgreSQL if it is
# missing, starts its cluster, makes a scratch database and role, and runs the test. Run after
# scripts/test.sh, which builds it.
set -euo pipefail
cd "$(dirname "$0")/.."

BUILD_DIR=${BUILD_DIR:-build}
test_binary="$BUILD_DIR/bin/tst_demopostgres"
[ -x "$test_binary" ] || { echo "$test_binary is not built"; exit 1; }

SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
if ! dpkg-query -W -f='${Status}' postgresql 2>/dev/null | grep -q "install ok installed"; then
    $SUDO apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends postgresql
fi

version=$(ls /usr/lib/postgresql | sort -V | tail -n 1)
$SUDO pg_ctlcluster "$version" main start >/dev/null 2>&1 || true
port=$(pg_conftool "$version" main show port 2>/dev/null | sed 's/.*= *//' || echo 5432)
for _ in $(seq 1 50); do
    pg_isready -q -h localhost -p "$port" && break
    sleep 0.2
done

as_postgres() {
    if [ "$(id -u)" -eq 0 ]; then runuser -u postgres -- "$@"; else sudo -u postgres "$@"; fi
}
export PGOPTIONS="--client-min-messages=warning"
as_postgres psql -q -p "$port" -c "DROP DATABASE IF EXISTS fwcalendar_test" >/dev/null
as_postgres psql -q -p "$port" -c "DROP ROLE IF EXISTS fwcalendar_test" >/dev/null
as_postgres psql -q -p "$port" -c "CREATE ROLE fwcalendar_test LOGIN PASSWORD 'fwcalendar'" >/dev/null
as_postgres createdb -p "$port" -O fwcalendar_test fwcalendar_test

export FWCALENDAR_TEST_PSQL="localhost:$port:fwcalendar_test:fwcalendar:fwcalendar_test"
export QT_QPA_PLATFORM=offscreen TZ=Europe/Berlin LC_ALL=C.UTF-8
"$test_binary"
