#!/bin/sh
# varkelctl with the real program on the simulated unit.
#
#     client.sh VARKEL-SIM VARKEL VARKELCTL ASSETS UNIT-DIR
set -eu
simulator=$1 program=$2 client=$3 assets=$4 unit=$5

rm -rf "$unit"
mkdir -p "$unit"
# The simulator leaves when its input ends.
mkfifo "$unit/console"
"$simulator" --unit-dir "$unit" --assets "$assets" --quiet -- \
    "$program" --headless --unit-file "$unit/unit.conf" <"$unit/console" >"$unit/output" 2>&1 &
exec 3>"$unit/console"

ask() { "$client" --unit-file "$unit/unit.conf" "$@"; }

# expect CODE TEXT COMMAND...: what a command prints, and how it ends.
expect() {
    code=$1 text=$2 got=0
    shift 2
    said=$(ask "$@") || got=$?
    if [ "$got" != "$code" ] || [ "$said" != "$text" ]; then
        echo "varkelctl $*: \"$said\" and $got, not \"$text\" and $code" >&2
        tail -n 30 "$unit/output" >&2
        exit 1
    fi
}

# until CODE COMMAND...: repeats a command, for at most a minute.
until_code() {
    wanted=$1 tries=240 got=-1
    shift
    while [ "$got" != "$wanted" ] && [ $tries -gt 0 ]; do
        got=0
        ask "$@" >"$unit/said" 2>&1 || got=$?
        tries=$((tries - 1))
        sleep 0.25
    done
    [ "$got" = "$wanted" ] || { echo "varkelctl $* never ended with $wanted" >&2; exit 1; }
}

until_code 0 --timeout 1 imsi
# The module is open when the last step has set its flag.
until_code 0 reg get 'GPRS\OPENFLAG' m_GprsOpenFlag
while [ "$(ask reg get 'GPRS\OPENFLAG' m_GprsOpenFlag)" != 1 ]; do sleep 0.25; done

expect 0 "$(ask reg get 'Software\QXGprsSim' IMSI)" imsi
expect 0 "$(ask reg get 'Software\QXGprsSim' IMEI)" imei
"$client" --unit-file "$unit/unit.conf" watch >"$unit/watched" &
watcher=$!
until_code 0 status
expect 0 sent send 10086 balance
until grep -q "^UM_CALLIN 1 1" "$unit/watched"; do sleep 0.25; done # it is answered
kill -INT $watcher
wait $watcher
grep -q "^link " "$unit/watched"
expect 0 "" hide
expect 0 "" show
expect 0 "" quit
expect 3 "" status
wait
