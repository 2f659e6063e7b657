#!/bin/sh
# The proofs that take too long for every day, two or more side by side; each leaves its log in out/long/.
# "scripts/long-proofs.sh" runs all of them, "scripts/long-proofs.sh fuzz.pdu cuts" these two.
#
# VARKEL_FUZZ_RUNS inputs go to each fuzz target (10 million). Inputs that reach new code are kept in out/fuzz/, and
# what makes a target fail there as well; a failing input belongs into fuzz/corpus/, which every check replays.
set -eu
cd "$(dirname "$0")/.."

inputs=${VARKEL_FUZZ_RUNS:-10000000}
seeds=${VARKEL_LONG_SEEDS:-100000}
# The longest first, so that none is left alone at the end.
all="uptime fuzz.record_file fuzz.unit_file seeds.receiving fuzz.phone_book fuzz.receive seeds.messages seeds.calls
fuzz.handlers fuzz.pdu seeds.bring-up fuzz.bmp cuts burst"

run_lane() {
    case $1 in
        fuzz.*)
            target=${1#fuzz.}
            mkdir -p "out/fuzz/$target"
            # Leaks are looked for once, at the end: after each input it takes longer than the input.
            ASAN_OPTIONS=quarantine_size_mb=16:malloc_context_size=4 "build/fuzz/fuzz/${target}_fuzz" \
                "out/fuzz/$target" "fuzz/corpus/$target" -artifact_prefix="out/fuzz/$target-" \
                -runs="$inputs" -detect_leaks=0 -timeout=300 -rss_limit_mb=2048 -print_final_stats=1
            ;;
        cuts) VARKEL_SEEDS=10000 build/release/tests/stores/store_tests --gtest_filter='PowerCut.Leaves*' ;;
        seeds.*)
            case $1 in
                *.bring-up) program=session/session_tests filter='Schedules.EndInOrder*' ;;
                *.messages) program=session/session_tests filter='Schedules.LoseNoMessage' ;;
                *.receiving) program=session/session_tests filter='ReceivingManySeeds.*' ;;
                *.calls) program=session/session_tests filter='CallSchedules.*' ;;
                *) return 2 ;;
            esac
            VARKEL_SEEDS=$seeds "build/release/tests/$program" --gtest_filter="$filter"
            ;;
        uptime) VARKEL_DAYS=3650 build/release/tests/session/session_tests --gtest_filter='Uptime.*' ;;
        burst) VARKEL_MESSAGES=3600 build/release/tests/session/session_tests --gtest_filter='ReceivingForLong.*' ;;
        *) return 2 ;;
    esac
}

# What a log says of itself in a few words.
figure() {
    sed -n 's/^stat::number_of_executed_units: *\([0-9]*\)/\1 inputs/p; s/^\([0-9]* cuts\),.*/\1/p' "$1" | tail -n 1
}

if [ "${1:-}" = --lane ]; then
    lane=$2
    log=out/long/$lane.log
    started=$(date +%s)
    if run_lane "$lane" >"$log" 2>&1; then
        # A filter that meets no test is no proof.
        if grep -q "Running 0 tests" "$log"; then
            echo "== $lane: no such test, see $log"
            exit 1
        fi
        echo "== $lane: passed, $(figure "$log") $(($(date +%s) - started)) s"
    else
        tail -n 15 "$log"
        echo "== $lane: FAILED, see $log"
        exit 1
    fi
    exit 0
fi

mkdir -p out/long
lanes=${*:-$all}
log=out/long/build.log
{
    case $lanes in
        *fuzz.*) cmake --preset fuzz -DVARKEL_TESTS=ON && cmake --build --preset fuzz -j "$(nproc)" --target all_fuzz ;;
    esac
    cmake --preset release -DVARKEL_TESTS=ON &&
        cmake --build --preset release -j "$(nproc)" --target session_tests store_tests
} >"$log" 2>&1 || {
    grep -E -A5 "error|FAILED" "$log" | head -n 60 >&2
    echo "== the build failed, see $log" >&2
    exit 1
}
# shellcheck disable=SC2086 # a list of words
printf "%s\n" $lanes | xargs -P "$(nproc)" -n 1 "$0" --lane
