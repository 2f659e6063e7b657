#!/bin/sh
# What an open, idle module costs: how often the program's threads woke in a minute, and its memory.
#
#     bench/idle.sh [BUILD-DIRECTORY]
set -eu
build=${1:-build/release}
unit=$(mktemp -d)
log=$unit/out.txt
trap 'rm -rf "$unit"' EXIT

# Voluntary switches of all threads of a process so far: each is a sleep, and so a wake-up.
switches() {
    cat /proc/"$1"/task/*/status | awk '/^voluntary_ctxt_switches/ { sum += $2 } END { print sum }'
}

mkfifo "$unit/input"
dbus-run-session -- "$build/simulator/varkel-sim" --unit-dir "$unit/unit" --assets "$build/assets" \
    -- "$build/src/app/varkel" --headless --unit-file "$unit/unit/unit.conf" <"$unit/input" >"$log" 2>&1 &
exec 3>"$unit/input"
until grep -q "the modem is open" "$log"; do sleep 1; done
sleep 5
pid=$(pgrep -f "varkel --headless --unit-file $unit/unit/unit.conf" | tail -n 1)
polls=$(grep -c "AT+CSQ" "$log")
before=$(switches "$pid")
sleep 60
after=$(switches "$pid")
polls=$(($(grep -c "AT+CSQ" "$log") - polls))
echo "$((after - before)) wake-ups in 60 s, $polls polls: $(((after - before) / polls)) for each"
awk '/^VmRSS|^RssAnon/ { print $1, $2, $3 }' "/proc/$pid/status"
echo quit >&3
wait
