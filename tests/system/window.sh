#!/bin/sh
# The window of the real program on a display of its own, touched by a pointer as a finger would: the stories below stand
# in window/, one file for each. What failed leaves UNIT-DIR/output and UNIT-DIR/screen.xwd.
#
#     window.sh VARKEL-SIM VARKEL ASSETS UNIT-DIR [STORY...]
set -eu
simulator=$1 program=$2 assets=$3 unit=$4
shift 4
[ $# -gt 0 ] || set -- calls service_code write_message answer_message delete_all call_back contact network_mode module

here=$(dirname "$0")
stories=$here/window
# shellcheck source-path=SCRIPTDIR source=simulated_unit.sh
. "$here/simulated_unit.sh"
# shellcheck source-path=SCRIPTDIR source=window/names.sh
. "$stories/names.sh"

mkdir "$unit/glass"
setpriv --pdeathsig KILL Xvfb -displayfd 1 -screen 0 800x480x24 -nolisten tcp -fbdir "$unit/glass" \
    >"$unit/display" 2>/dev/null &
server=$!

# ask COMMAND TEXT...: the program's answer to a command has these texts, one after the other.
ask() {
    tell "$1"
    shift
    for text in "$@"; do await 10 "$text"; done
}

# The program says what can be touched now; the answer to the second command ends its list.
told() { sed -n "$1"' { s/^\[robot\] //p }' "$unit/output"; }
list_ended() { told "$asked,\$" | grep -q "has a user"; }
find_target() {
    asked=$(($(wc -l <"$unit/output") + 1)) id=${1%:*} which=1
    [ "$id" = "$1" ] || which=${1#*:}
    tell targets
    tell touch
    (wait_for 20 "the targets" list_ended) || exit 1 # its own counter
    place=$(told "$asked,\$" | sed -n "s/^$id at \(.*\), \(.*\), \(.*\) x \(.*\)$/\1 \2 \3 \4/p" | sed -n "${which}p")
    [ -n "$place" ]
}
set_middle() { x=$(($1 + $3 / 2)) y=$(($2 + $4 / 2)); }
aim() {
    wait_for 30 "a touch of $1" find_target "$1"
    # shellcheck disable=SC2086 # four numbers
    set_middle $place
}
# tap WHAT...: a pointer on the middle of each, as soon as it takes a touch.
tap() {
    for target in "$@"; do
        aim "$target"
        xdotool mousemove "$x" "$y" click 1
    done
}
# The main screen is on top again: others use the numbers of its cells for their own.
await_main() { wait_for 20 "the main screen" find_target $main_dial_pad; }
tap_twice() {
    aim "$1"
    xdotool mousemove "$x" "$y" click --repeat 2 --delay 40 1
}
# type_keys TEXT: on the page of the soft keyboard that is open.
type_keys() {
    rest=$1
    while [ -n "$rest" ]; do
        tap "$(printf %d "'$rest")"
        rest=${rest#?}
    done
}

# send_written TEXT NUMBER: what is typed on the screen that writes messages, and left then.
send_written() {
    type_keys "$1"
    tap $write_send
    await 30 "message to 86$2: \"$1\""
    await 20 "[message] sent"
    tap $exit
}
hang_up() {
    tap $main_hang_up
    await 20 "UM_CALLHOOKED"
}
# told_by COMMAND TEXT: the program's answer has this text by now.
told_by() {
    tell "$1"
    printed "$2"
}
# miss_call NUMBER CALLER: somebody gives up when the screen of his call is there; the record of it is kept.
miss_call() {
    tell "!call $1"
    await 20 "$2 is calling"
    wait_for 20 "the screen of the call" find_target "$call_accept"
    tell "!hangup"
    await 20 "UM_CALLHOOKED"
    wait_for 20 "the record of the call" told_by "calls missed" "$2"
}

wait_for 20 "a display" test -s "$unit/display"
DISPLAY=:$(cat "$unit/display") SDL_VIDEODRIVER=x11
export DISPLAY SDL_VIDEODRIVER
start_unit --pin 1234 -- "$program"

await 60 "[input]"
tap $code_1 $code_2 $code_3 $code_4 $ok
await 120 "[data] connected"
await 30 "the modem is open"

for story in "$@"; do
    # shellcheck source=/dev/null
    . "$stories/$story.sh"
done

tell quit
exec 3>&-
wait $simulated || fail "the program ended with $?"
kill $server
