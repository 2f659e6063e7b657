# A program on the simulated unit: started, told and listened to. To be sourced by a script that has set simulator,
# program, assets and unit, the unit's directory, which is a new one then.

rm -rf "$unit"
mkdir -p "$unit"
simulated=

# start_unit OPTION... -- PROGRAM OPTION...: the simulator leaves when its input ends.
start_unit() {
    mkfifo "$unit/console"
    "$simulator" --unit-dir "$unit" --assets "$assets" "$@" --unit-file "$unit/unit.conf" \
        <"$unit/console" >"$unit/output" 2>&1 &
    simulated=$!
    exec 3>"$unit/console"
}
# A line for the program; one behind "!" is for the simulator.
tell() { echo "$1" >&3; }

fail() {
    echo "$1" >&2
    cp "$unit/glass/Xvfb_screen0" "$unit/screen.xwd" 2>/dev/null || true # of a window
    tail -n 40 "$unit/output" >&2
    [ -z "$simulated" ] || kill "$simulated"
    exit 1
}

# wait_for SECONDS WHAT COMMAND...: until the command succeeds.
wait_for() {
    tries=$(($1 * 20)) what=$2
    shift 2
    until "$@"; do
        tries=$((tries - 1))
        [ $tries -gt 0 ] || fail "in vain: $what"
        sleep 0.05
    done
}

# Looks for a text in what was printed since the last line that was waited for.
seen=0
printed() {
    found=$(tail -n "+$((seen + 1))" "$unit/output" | grep -n -m 1 -F -e "$1") || return 1
    seen=$((seen + ${found%%:*}))
}
await() { wait_for "$1" "\"$2\"" printed "$2"; }
