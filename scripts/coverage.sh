#!/bin/sh
# Counts what the tests execute of src/: a summary for each directory, and every line in build/coverage/report/index.html.
set -eu
cd "$(dirname "$0")/.."
. scripts/packages.sh
# shellcheck disable=SC2086 # lists of words
need_packages $packages_build $packages_check gcovr
jobs=$(nproc)

cmake --preset coverage >/dev/null
cmake --build --preset coverage -j "$jobs" --target check_unit check_model check_screens
find build/coverage -name '*.gcda' -delete
# More schedules find faults, but no other lines.
VARKEL_SEEDS=${VARKEL_SEEDS:-50} VARKEL_DAYS=${VARKEL_DAYS:-1} dbus-run-session -- \
    ctest --test-dir build/coverage -L 'unit|model|screens' -j "$jobs" --output-on-failure

# What only an exception of the standard library reaches is no branch of ours.
mkdir -p build/coverage/report
gcovr --root . --filter src/ --exclude-throw-branches --exclude-unreachable-branches -j "$jobs" \
    --html-details build/coverage/report/index.html --csv build/coverage/report/files.csv build/coverage
awk -F, '
    NR > 1 {
        sub("/[^/]*$", "", $1)
        lines[$1] += $2; run[$1] += $3; branches[$1] += $5; taken[$1] += $6
    }
    END {
        for (name in lines)
            printf "%-22s lines %5d, %5.1f %%   branches %5d, %5.1f %%\n", name, lines[name],
                100 * run[name] / lines[name], branches[name], 100 * taken[name] / (branches[name] ? branches[name] : 1)
    }' build/coverage/report/files.csv | sort | tee build/coverage/report/summary.txt
