#!/bin/sh
# varkelctl and other programs of the unit with the real program on the simulated unit: what they ask, the window that is
# left and shown, an opening that is put off, another language, sleep and waking up.
#
#     client.sh VARKEL-SIM VARKEL VARKELCTL ASSETS UNIT-DIR
set -eu
simulator=$1 program=$2 client=$3 assets=$4 unit=$5
# shellcheck source-path=SCRIPTDIR source=simulated_unit.sh
. "$(dirname "$0")/simulated_unit.sh"

start_unit --quiet -- "$program" --headless

ask() { "$client" --unit-file "$unit/unit.conf" "$@"; }
# order MEMBER ARGUMENT...: what another program posts to the window.
order() {
    member=$1
    shift
    dbus-send --print-reply --dest=org.varkel.window.W3Gwindow /org/varkel/window/1 "org.varkel.Window1.$member" "$@" \
        >/dev/null || fail "not posted: $*"
}
order_by_name() { order PostRegistered "string:$1" uint32:0 uint32:0; }

# expect CODE TEXT COMMAND...: what a command prints, and how it ends.
expect() {
    code=$1 text=$2 got=0
    shift 2
    said=$(ask "$@") || got=$?
    if [ "$got" != "$code" ] || [ "$said" != "$text" ]; then
        fail "varkelctl $*: \"$said\" and $got, not \"$text\" and $code"
    fi
}

await_open() {
    await 60 "[screen] the modem is open"
    await 5 "main window: 3G_OPEN_END 0, 0" # its flag is set by now
}

await_open

expect 0 "$(ask reg get 'Software\QXGprsSim' IMSI)" imsi
expect 0 "$(ask reg get 'Software\QXGprsSim' IMEI)" imei
"$client" --unit-file "$unit/unit.conf" watch >"$unit/watched" &
watcher=$!
expect 0 up status
expect 0 sent send 10086 balance
wait_for 20 "the answer to the message" grep -q "^UM_CALLIN 1 1" "$unit/watched"
kill -INT $watcher
wait $watcher
grep -q "^link " "$unit/watched"

# An order to open waits for the window, which the user has left.
expect 0 "" hide
await 5 "[screen] hidden"
wait_for 5 "3Gwindow_HIDE" grep -q "main window: 3Gwindow_HIDE 0, 0" "$unit/output"
order_by_name NEED_CLOSE_USB_HOST
await 20 "[screen] the modem is closed"
expect 0 "" open
expect 0 down status
! printed "[step]" || fail "opened behind a hidden window"
expect 0 "" show
await 5 "[screen] shown"
await_open

order_by_name LANGUAGE_CHANGE
expect 0 up status

# Who sleeps with an open module wakes up with one; giving that up is quitting.
order_by_name UM_3G_SIMCARDDETACH
await 20 "[screen] the modem is closed"
order Post uint32:256 uint32:238 uint32:0 # the key that wakes the unit up
await 5 "[step] powering the modem"
expect 0 "" quit
expect 3 "" status
wait
