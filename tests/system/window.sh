#!/bin/sh
# The window of the real program on a display of its own, touched by a pointer: a start with a PIN, a call that is taken,
# one that is dialled, and a dialogue with the network. What failed leaves UNIT-DIR/output and UNIT-DIR/screen.xwd.
#
#     window.sh VARKEL-SIM VARKEL ASSETS UNIT-DIR
set -eu
simulator=$1 program=$2 assets=$3 unit=$4
. "$(dirname "$0")/await.sh"

# The numbers of what is touched.
main_dial_pad=0 main_hang_up=1 # the cells of the main screen
pad_1=1007 pad_star=1019 pad_0=1020 pad_hash=1021 pad_dial=1022
code_1=1059 code_2=1033 code_3=1034 code_4=1060 ok=1
call_accept=1008
ussd_reply=1102

rm -rf "$unit"
mkdir -p "$unit/glass"
setpriv --pdeathsig KILL Xvfb -displayfd 1 -screen 0 800x480x24 -nolisten tcp -fbdir "$unit/glass" \
    >"$unit/display" 2>/dev/null &
server=$! simulated=

fail() {
    echo "$1" >&2
    cp "$unit/glass/Xvfb_screen0" "$unit/screen.xwd" 2>/dev/null || true
    tail -n 40 "$unit/output" >&2
    [ -z "$simulated" ] || kill "$simulated"
    exit 1
}

tell() { echo "$1" >&3; }

# The program says what can be touched now; the answer to the second command ends its list.
find_target() {
    tell targets
    tell touch
    await 20 "this window has a user"
    place=$(head -n "$seen" "$unit/output" | tail -n "+$((asked + 1))" |
        sed -n "s/^\[robot\] $1 at \([0-9]*\), \([0-9]*\), \([0-9]*\) x \([0-9]*\)$/\1 \2 \3 \4/p" | tail -n 1)
    asked=$seen
    [ -n "$place" ]
}
# tap ID...: a pointer on the middle of each, as soon as it takes a touch.
tap() {
    for id in "$@"; do
        asked=$seen
        wait_for 30 "a touch of $id" find_target "$id"
        # shellcheck disable=SC2086 # four numbers
        set_middle $place
        DISPLAY=$display xdotool mousemove "$x" "$y" click 1
    done
}
set_middle() { x=$(($1 + $3 / 2)) y=$(($2 + $4 / 2)); }

wait_for 20 "a display" test -s "$unit/display"
display=:$(cat "$unit/display")
mkfifo "$unit/console"
DISPLAY=$display SDL_VIDEODRIVER=x11 "$simulator" --unit-dir "$unit" --assets "$assets" --quiet --pin 1234 -- \
    "$program" --unit-file "$unit/unit.conf" <"$unit/console" >"$unit/output" 2>&1 &
simulated=$!
exec 3>"$unit/console"

await 60 "[input]"
tap $code_1 $code_2 $code_3 $code_4 $ok
await 120 "[data] connected"

tell "!call 13800138000"
await 20 "13800138000 is calling"
tap $call_accept
await 20 "in a call"
tap $main_hang_up
await 20 "the modem is open"

tap $main_dial_pad $pad_1 $pad_0 $pad_0 $pad_0 $pad_0 $pad_dial
await 30 "in a call"
tap $main_hang_up
await 20 "the modem is open"

tell "!ussd Your balance is 12.50"
tell "!ussd-ask Press 1 for the balance"
tap $main_dial_pad $pad_star $pad_1 $pad_0 $pad_0 $pad_hash $pad_dial
await 30 "Press 1 for the balance"
tap $ussd_reply $code_1 $ok
await 30 "Your balance is 12.50"
tap $ok

tell quit
exec 3>&-
wait $simulated || fail "the program ended with $?"
kill $server
