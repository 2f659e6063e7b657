#!/bin/sh
# Every figure of docs/performance.md, on a machine that has nothing else to do; about ten minutes.
#
#     bench/all.sh [BUILD-DIRECTORY] >figures.txt
set -eu
build=${1:-build/release}
heading() { printf '\n== %s\n' "$1"; }

for name in at_feed sms_pdu phone_book; do
    heading "$name"
    "$build/bench/${name}_bench" --benchmark_repetitions=9 --benchmark_report_aggregates_only=true 2>/dev/null |
        grep -v -E "_mean|_stddev|_cv"
done
for name in list_screens bring_up ring; do
    heading "$name"
    "$build/bench/${name}_bench"
done
heading broadcast
dbus-run-session -- "$build/bench/broadcast_bench"
heading window
xvfb-run -a -s "-screen 0 800x480x24" dbus-run-session -- "$build/bench/window_bench" "$build/simulator/varkel-sim" \
    "$build/src/app/varkel"
heading idle
bench/idle.sh "$build"
