# Waiting for what a program prints into "$unit/output". To be sourced, by a script with a function "fail TEXT".

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
