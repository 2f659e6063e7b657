# A call is missed, and its number called from the list.
miss_call 13800138000 13800138000
tap $main_calls
tap_twice $row:1
await 20 "call to 13800138000"
tell "!answer"
await 20 "in a call"
hang_up
